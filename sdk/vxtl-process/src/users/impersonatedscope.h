#pragma once

namespace vx::users {

/// Puts the calling thread under a token. It does not put it back: whoever owns the object calls
/// RevertToSelf when `impersonated` is set.
class ImpersonatedScope {
public:
    /// A null token does nothing. Throws Win32Exception.
    explicit ImpersonatedScope(void* token);
    ImpersonatedScope(const ImpersonatedScope&) = delete;
    ImpersonatedScope& operator=(const ImpersonatedScope&) = delete;

    bool impersonated() const noexcept { return m_impersonated; }

private:
    bool m_impersonated = false;
};

} // namespace vx::users
