#include "priveleges/lsauserprivilegesholerimpl.h"

#include "vxtl/win32exception.h"

#include <windows.h>

#include <ntsecapi.h>

#include <algorithm>

namespace vx::priveleges {

using logging::Level;
using logging::LogStream;

LsaUserPrivilegesHolerImpl::LsaUserPrivilegesHolerImpl(
    const std::wstring& qualifiedAccountName, const wchar_t* targetName, PolicyDriver& driver)
    : m_driver(driver)
{
    VX_LOG_SCOPE();
    const long status = m_driver.open(targetName, POLICY_CREATE_ACCOUNT | POLICY_LOOKUP_NAMES, m_policy);
    if (status != 0)
        VX_THROW_WIN32(m_driver.errorOf(status), L"getPolicyHandle failed");
    if (!m_driver.lookUpSid(targetName, qualifiedAccountName, m_sid)) {
        const DWORD error = GetLastError();
        LogStream(Level::Error) << "getUserSid(" << qualifiedAccountName << ") failed (Error: " << error << ")";
        VX_THROW_WIN32(error);
    }
}

std::vector<std::wstring> LsaUserPrivilegesHolerImpl::getPrivileges()
{
    std::vector<std::wstring> rights;
    const long status = m_driver.enumerateRights(m_policy.get(), m_sid, rights);
    if (status != 0) {
        LogStream(Level::Error) << "LsaEnumerateAccountRights() failed (Error: " << status << ")";
        return {};
    }
    return rights;
}

bool LsaUserPrivilegesHolerImpl::hasPrivilege(const std::wstring& name)
{
    return std::ranges::count(getPrivileges(), name) != 0;
}

bool LsaUserPrivilegesHolerImpl::addPrivilege(const std::wstring& name)
{
    VX_LOG_SCOPE();
    const long status = m_driver.addRight(m_policy.get(), m_sid, name);
    if (status != 0)
        LogStream(Level::Error) << "LsaAddAccountRights(" << name << ") failed (Error: " << status << ")";
    return status == 0;
}

bool LsaUserPrivilegesHolerImpl::removePrivilege(const std::wstring& name)
{
    VX_LOG_SCOPE();
    const long status = m_driver.removeRight(m_policy.get(), m_sid, name);
    if (status != 0)
        LogStream(Level::Error) << "LsaRemoveAccountRights(" << name << ") failed (Error: " << status << ")";
    return status == 0;
}

} // namespace vx::priveleges
