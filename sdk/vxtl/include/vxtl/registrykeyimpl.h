#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vx::registry {

/// Which of the two registries of a 64-bit system a key is looked up in.
enum class View { Default = 0, View32 = 1, View64 = 2 };

/// The usual access masks, by the system's numbers.
inline constexpr unsigned long readAccess = 0x20019;
inline constexpr unsigned long writeAccess = 0x20006;
inline constexpr unsigned long allAccess = 0xF003F;

namespace details {

/// What stands behind an open key: the system's registry, or another store. One thread at a time.
/// RegistryKey tells what the operations promise.
class RegistryKeyImpl {
public:
    virtual std::shared_ptr<RegistryKeyImpl> openKey(
        const std::wstring& subkey, unsigned long access, View view) const = 0;
    virtual std::shared_ptr<RegistryKeyImpl> createKey(
        const std::wstring& subkey, unsigned long access, unsigned long options, View view) = 0;
    virtual bool isCreated() const = 0;
    virtual bool doesValueExist(const std::wstring& name) const = 0;
    virtual bool doesKeyExist(const std::wstring& subkey, View view) const = 0;
    virtual std::vector<std::wstring> getKeys() const = 0;
    virtual std::vector<std::wstring> getValues() const = 0;
    virtual std::int32_t getInt32Value(const std::wstring& name) const = 0;
    virtual std::int64_t getInt64Value(const std::wstring& name) const = 0;
    virtual std::wstring getStringValue(const std::wstring& name) const = 0;
    virtual std::vector<std::wstring> getMultiStringValue(const std::wstring& name) const = 0;
    virtual std::vector<std::uint8_t> getBinaryValue(const std::wstring& name) const = 0;
    virtual void setInt32Value(const std::wstring& name, std::int32_t value) = 0;
    virtual void setInt64Value(const std::wstring& name, std::int64_t value) = 0;
    virtual void setStringValue(const std::wstring& name, const std::wstring& text) = 0;
    virtual void setMultiStringValue(const std::wstring& name, const std::vector<std::wstring>& list) = 0;
    virtual void setBinaryValue(const std::wstring& name, const std::vector<std::uint8_t>& bytes) = 0;
    virtual void deleteValue(const std::wstring& name) = 0;
    virtual void deleteKey(const std::wstring& subkey, View view) = 0;
    virtual void deleteTree(const std::wstring& subkey) = 0;
    virtual ~RegistryKeyImpl() = default;
};

} // namespace details

} // namespace vx::registry
