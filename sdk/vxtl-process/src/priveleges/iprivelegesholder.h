#pragma once

#include <string>
#include <vector>

namespace vx::priveleges {

/// The rights that the local security policy gives one account. Failures are logged and read as no.
class IPrivelegesHolder {
public:
    virtual ~IPrivelegesHolder() = default;
    /// Empty on failure; an account that was never given a right counts as one.
    virtual std::vector<std::wstring> getPrivileges() = 0;
    /// The name must match exactly.
    virtual bool hasPrivilege(const std::wstring& name) = 0;
    virtual bool addPrivilege(const std::wstring& name) = 0;
    virtual bool removePrivilege(const std::wstring& name) = 0;
};

} // namespace vx::priveleges
