#pragma once

#include <string>
#include <type_traits>

namespace vx::dll {

/// The handle of a loaded module, borrowed; null when it is not loaded.
void* getModuleHandle(const std::wstring& name) noexcept;

namespace details {

/// An exported function of a module, valid while the module is loaded. Converts to the pointer type it is
/// assigned to.
class ProcAddress {
public:
    /// Throws Win32Exception when the module has no such export.
    ProcAddress(void* module, const char* name);

    template <typename Function>
        requires std::is_function_v<Function>
    operator Function*() const noexcept { return reinterpret_cast<Function*>(m_address); }

private:
    void* m_address;
};

} // namespace details

} // namespace vx::dll
