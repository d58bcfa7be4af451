#pragma once

#include "priveleges/iprivelegesholder.h"
#include "priveleges/policydriver.h"

namespace vx::priveleges {

/// An account's rights in the local security policy. Reads the policy anew at each question. The driver is
/// borrowed.
class LsaUserPrivilegesHolerImpl : public IPrivelegesHolder {
public:
    /// `targetName`: the computer whose policy it is, null for this one. Throws Win32Exception when the
    /// policy can't be opened or the account isn't known.
    LsaUserPrivilegesHolerImpl(const std::wstring& qualifiedAccountName, const wchar_t* targetName,
        PolicyDriver& driver = systemPolicyDriver());
    LsaUserPrivilegesHolerImpl(const LsaUserPrivilegesHolerImpl&) = delete;
    LsaUserPrivilegesHolerImpl& operator=(const LsaUserPrivilegesHolerImpl&) = delete;

    std::vector<std::wstring> getPrivileges() override;
    bool hasPrivilege(const std::wstring& name) override;
    bool addPrivilege(const std::wstring& name) override;
    bool removePrivilege(const std::wstring& name) override;

private:
    PolicyDriver& m_driver;
    std::shared_ptr<void> m_policy;
    Sid m_sid;
};

} // namespace vx::priveleges
