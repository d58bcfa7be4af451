#include "vxtl-process/users/useraccount.h"

#include "vxtl/win32exception.h"

#include <windows.h>

#include <vector>

namespace vx::users {

namespace {

void getNamesByToken(void* token, std::wstring& domain, std::wstring& user)
{
    DWORD size = 0;
    if (!GetTokenInformation(token, TokenUser, nullptr, 0, &size)) {
        const DWORD error = GetLastError();
        if (error != ERROR_INSUFFICIENT_BUFFER)
            VX_THROW_WIN32(error);
    }
    std::vector<unsigned char> data(size);
    if (!GetTokenInformation(token, TokenUser, data.data(), size, &size)) {
        const DWORD error = GetLastError();
        VX_THROW_WIN32(error);
    }
    const PSID sid = reinterpret_cast<const TOKEN_USER*>(data.data())->User.Sid;

    DWORD userSize = 0;
    DWORD domainSize = 0;
    SID_NAME_USE use{};
    if (!LookupAccountSidW(nullptr, sid, nullptr, &userSize, nullptr, &domainSize, &use)) {
        const DWORD error = GetLastError();
        if (error != ERROR_INSUFFICIENT_BUFFER)
            VX_THROW_WIN32(error);
    }
    std::wstring userName(userSize, L'\0');
    std::wstring domainName(domainSize, L'\0');
    if (!LookupAccountSidW(nullptr, sid, userName.data(), &userSize, domainName.data(), &domainSize, &use)) {
        const DWORD error = GetLastError();
        VX_THROW_WIN32(error);
    }
    // Without the terminators.
    user.assign(userName.data());
    domain.assign(domainName.data());
}

} // namespace

UserAccount::UserAccount(std::wstring domain, std::wstring user) : m_domain(std::move(domain)), m_user(std::move(user))
{}

UserAccount::UserAccount(const std::wstring& qualifiedName)
{
    const auto backslash = qualifiedName.find(L'\\');
    if (backslash == std::wstring::npos) {
        m_user = qualifiedName;
    } else {
        m_domain = qualifiedName.substr(0, backslash);
        m_user = qualifiedName.substr(backslash + 1);
    }
}

UserAccount::UserAccount(void* token)
{
    getNamesByToken(token, m_domain, m_user);
}

std::wstring UserAccount::qualifiedName(NameForm form) const
{
    if (form == NameForm::User || m_domain.empty())
        return m_user;
    if (form == NameForm::UserAtDomain)
        return m_user + L"@" + m_domain;
    return m_domain + L"\\" + m_user;
}

} // namespace vx::users
