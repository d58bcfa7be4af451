#pragma once

#include <memory>
#include <string>
#include <vector>

namespace vx::priveleges {

/// A native SID.
using Sid = std::vector<unsigned char>;

/// The system's security policy. The policy handle is opaque and borrowed. Status results are the system's
/// NTSTATUS, 0 for success.
class PolicyDriver {
public:
    virtual ~PolicyDriver() = default;
    /// Opens the policy of the named computer, or of this one for null. It closes with its last owner.
    virtual long open(const wchar_t* target, unsigned long access, std::shared_ptr<void>& policy) = 0;
    /// The Win32 code of a failing status.
    virtual unsigned long errorOf(long status) = 0;
    /// False on failure: GetLastError tells why.
    virtual bool lookUpSid(const wchar_t* target, const std::wstring& account, Sid& sid) = 0;
    virtual long enumerateRights(void* policy, const Sid& sid, std::vector<std::wstring>& rights) = 0;
    virtual long addRight(void* policy, const Sid& sid, const std::wstring& right) = 0;
    virtual long removeRight(void* policy, const Sid& sid, const std::wstring& right) = 0;
};

/// The real one; any thread.
PolicyDriver& systemPolicyDriver();

} // namespace vx::priveleges
