#pragma once

namespace vx::wow64 {

/// Whether this 32-bit process runs on a 64-bit system. Throws Win32Exception.
bool isWow64();

/// Lets the thread that made it see the real system folder; a stack object. Does nothing where the system
/// redirects nothing.
class DisabledFsRedirection {
public:
    DisabledFsRedirection() noexcept;
    ~DisabledFsRedirection();
    DisabledFsRedirection(const DisabledFsRedirection&) = delete;
    DisabledFsRedirection& operator=(const DisabledFsRedirection&) = delete;

private:
    void* m_oldValue = nullptr;
    bool m_disabled = false;
};

} // namespace vx::wow64
