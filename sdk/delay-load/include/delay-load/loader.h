#pragma once

#include <optional>
#include <string>

namespace vx::delayload {

/// A loaded library; stays loaded for the life of the process.
using Module = void*;

/// What the bootstrap needs of the system. Any thread; throws nothing but std::bad_alloc.
class ILoader {
public:
    virtual ~ILoader() = default;
    /// Loads by full path; the library's own imports are searched beside it first. Null when that fails.
    virtual Module load(const std::wstring& path) = 0;
    /// Loads by a bare file name, from the application's and the system's folder only. Null when that fails.
    virtual Module loadByName(const std::wstring& name) = 0;
    /// Null when the library has no function of that name.
    virtual void* findFunction(Module module, const char* name) = 0;
    /// Full name of the process's executable; empty when unknown.
    virtual std::wstring executablePath() = 0;
    /// Without a backslash at its end; empty when unknown.
    virtual std::wstring systemDirectory() = 0;
    /// A text value below HKEY_LOCAL_MACHINE as it stands, unexpanded; the first of several texts. Nothing when the
    /// key or the value is missing or not a text.
    virtual std::optional<std::wstring> readRegistryText(const std::wstring& key, const std::wstring& value) = 0;
};

} // namespace vx::delayload
