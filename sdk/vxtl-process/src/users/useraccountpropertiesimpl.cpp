#include "vxtl-process/users/useraccountpropertiesimpl.h"

#include "users/samename.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <lm.h>

namespace vx::users {

namespace {

std::wstring textOf(const wchar_t* text)
{
    return text ? text : L"";
}

} // namespace

bool isLocalDomain(const std::wstring& name, AccountDriver& driver)
{
    return name.empty() || name == L"." || isSameName(name, driver.computerName());
}

UserAccountPropertiesImpl::UserAccountPropertiesImpl(UserAccount account, AccountDriver& driver)
    : m_account(std::move(account)), m_driver(driver)
{}

UserAccountPropertiesImpl::Buffer UserAccountPropertiesImpl::domainController()
{
    if (isLocalDomain(m_account.domain(), m_driver))
        return nullptr;
    AccountAnswer answer = m_driver.domainController(m_account.domain());
    if (answer.status != 0 || !answer.data)
        VX_THROW_WIN32(answer.status, L"NetGetDCName failed at resolving of " + m_account.qualifiedName());
    return std::move(answer.data);
}

void UserAccountPropertiesImpl::requireLevel(unsigned long level, Buffer& buffer)
{
    if (buffer)
        return;
    const Buffer controller = domainController();
    AccountAnswer answer = m_driver.userInfo(static_cast<const wchar_t*>(controller.get()), m_account.user(), level);
    if (answer.status != 0 || !answer.data)
        VX_THROW_WIN32(answer.status, L"NetUserGetInfo fail at level " + std::to_wstring(level));
    buffer = std::move(answer.data);
}

template <typename Record>
const Record& UserAccountPropertiesImpl::record(unsigned long level, Buffer& buffer)
{
    // Each question costs a way to the domain's controller, so an answer is kept for all that its level tells.
    requireLevel(level, buffer);
    return *static_cast<const Record*>(buffer.get());
}

bool UserAccountPropertiesImpl::hasFlag(unsigned long flag)
{
    return (record<USER_INFO_1>(1, m_level1).usri1_flags & flag) != 0;
}

unsigned long UserAccountPropertiesImpl::privilege()
{
    return record<USER_INFO_1>(1, m_level1).usri1_priv;
}

bool UserAccountPropertiesImpl::isAccountDisabled()
{
    return hasFlag(UF_ACCOUNTDISABLE);
}

bool UserAccountPropertiesImpl::isLockedOut()
{
    return hasFlag(UF_LOCKOUT);
}

bool UserAccountPropertiesImpl::isPasswordExpired()
{
    return hasFlag(UF_PASSWORD_EXPIRED);
}

bool UserAccountPropertiesImpl::isPasswordChangeForbidden()
{
    return hasFlag(UF_PASSWD_CANT_CHANGE);
}

bool UserAccountPropertiesImpl::isNotDelegated()
{
    return hasFlag(UF_NOT_DELEGATED);
}

bool UserAccountPropertiesImpl::isNormalAccount()
{
    return hasFlag(UF_NORMAL_ACCOUNT);
}

bool UserAccountPropertiesImpl::isInterdomainTrustAccount()
{
    return hasFlag(UF_INTERDOMAIN_TRUST_ACCOUNT);
}

bool UserAccountPropertiesImpl::isServerTrustAccount()
{
    return hasFlag(UF_SERVER_TRUST_ACCOUNT);
}

bool UserAccountPropertiesImpl::isGuest()
{
    // A guest's number is 0, so it is told by the two bits that all others have one of.
    return (privilege() & 3) == USER_PRIV_GUEST;
}

bool UserAccountPropertiesImpl::isUser()
{
    return (privilege() & USER_PRIV_USER) != 0;
}

bool UserAccountPropertiesImpl::isAdmin()
{
    return (privilege() & USER_PRIV_ADMIN) != 0;
}

std::wstring UserAccountPropertiesImpl::getName()
{
    return textOf(record<USER_INFO_1>(1, m_level1).usri1_name);
}

std::wstring UserAccountPropertiesImpl::getHomeDirectory()
{
    return textOf(record<USER_INFO_1>(1, m_level1).usri1_home_dir);
}

std::wstring UserAccountPropertiesImpl::getFullName()
{
    return textOf(record<USER_INFO_2>(2, m_level2).usri2_full_name);
}

std::wstring UserAccountPropertiesImpl::getWorkstations()
{
    return textOf(record<USER_INFO_2>(2, m_level2).usri2_workstations);
}

std::wstring UserAccountPropertiesImpl::getLogonServer()
{
    return textOf(record<USER_INFO_2>(2, m_level2).usri2_logon_server);
}

unsigned long UserAccountPropertiesImpl::getCountryCode()
{
    return record<USER_INFO_2>(2, m_level2).usri2_country_code;
}

unsigned long UserAccountPropertiesImpl::getCodePage()
{
    return record<USER_INFO_2>(2, m_level2).usri2_code_page;
}

std::wstring UserAccountPropertiesImpl::getProfile()
{
    return textOf(record<USER_INFO_4>(4, m_level4).usri4_profile);
}

void* UserAccountPropertiesImpl::getUserSid()
{
    return record<USER_INFO_4>(4, m_level4).usri4_user_sid;
}

unsigned long UserAccountPropertiesImpl::getPrimaryGroupId()
{
    return record<USER_INFO_4>(4, m_level4).usri4_primary_group_id;
}

} // namespace vx::users
