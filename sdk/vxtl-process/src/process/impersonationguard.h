#pragma once

#include "users/impersonatedscope.h"

namespace vx::process {

/// Runs the thread under a token for the object's life.
class ImpersonationGuard {
public:
    /// Throws Win32Exception.
    explicit ImpersonationGuard(void* token) : m_scope(token) {}
    /// Logs a failure to revert.
    ~ImpersonationGuard();
    ImpersonationGuard(const ImpersonationGuard&) = delete;
    ImpersonationGuard& operator=(const ImpersonationGuard&) = delete;

private:
    users::ImpersonatedScope m_scope;
};

} // namespace vx::process
