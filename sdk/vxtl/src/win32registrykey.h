#pragma once

#include "vxtl/registrykeyhandle.h"
#include "vxtl/registrykeyimpl.h"

namespace vx::registry::details {

/// A key of the system's registry.
class Win32RegistryKey : public RegistryKeyImpl {
public:
    /// Takes the native handle over. Throws BaseException for a null one.
    explicit Win32RegistryKey(void* key, bool created = false);

    std::shared_ptr<RegistryKeyImpl> openKey(
        const std::wstring& subkey, unsigned long access, View view) const override;
    std::shared_ptr<RegistryKeyImpl> createKey(
        const std::wstring& subkey, unsigned long access, unsigned long options, View view) override;
    bool isCreated() const override { return m_created; }
    bool doesValueExist(const std::wstring& name) const override;
    bool doesKeyExist(const std::wstring& subkey, View view) const override;
    std::vector<std::wstring> getKeys() const override;
    std::vector<std::wstring> getValues() const override;
    std::int32_t getInt32Value(const std::wstring& name) const override;
    std::int64_t getInt64Value(const std::wstring& name) const override;
    std::wstring getStringValue(const std::wstring& name) const override;
    std::vector<std::wstring> getMultiStringValue(const std::wstring& name) const override;
    std::vector<std::uint8_t> getBinaryValue(const std::wstring& name) const override;
    void setInt32Value(const std::wstring& name, std::int32_t value) override;
    void setInt64Value(const std::wstring& name, std::int64_t value) override;
    void setStringValue(const std::wstring& name, const std::wstring& text) override;
    void setMultiStringValue(const std::wstring& name, const std::vector<std::wstring>& list) override;
    void setBinaryValue(const std::wstring& name, const std::vector<std::uint8_t>& bytes) override;
    void deleteValue(const std::wstring& name) override;
    void deleteKey(const std::wstring& subkey, View view) override;
    void deleteTree(const std::wstring& subkey) override;

private:
    // The three give the system's status.
    long query(const std::wstring& name, unsigned long& type, unsigned long& size) const;
    long read(const std::wstring& name, void* data, unsigned long& size) const;
    long write(const std::wstring& name, unsigned long type, const void* data, std::size_t size) const;

    RegistryKeyHandle m_key;
    bool m_created;
};

} // namespace vx::registry::details
