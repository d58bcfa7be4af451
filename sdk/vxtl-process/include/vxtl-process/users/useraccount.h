#pragma once

#include <string>

namespace vx::users {

/// How an account's name is written. Any other value reads as DomainBackslashUser.
enum class NameForm : int { DomainBackslashUser = 0, User = 1, UserAtDomain = 2 };

/// Names an account; says nothing about whether it exists. A value.
class UserAccount {
public:
    UserAccount(std::wstring domain, std::wstring user);
    /// Splits at the first backslash; without one the whole text is the user.
    explicit UserAccount(const std::wstring& qualifiedName);
    /// The token's user; the token is borrowed. Throws Win32Exception.
    explicit UserAccount(void* token);
    explicit UserAccount(wchar_t*) = delete; // would be taken for a token

    const std::wstring& domain() const noexcept { return m_domain; }
    const std::wstring& user() const noexcept { return m_user; }
    /// The user alone when the domain is empty.
    std::wstring qualifiedName(NameForm form = NameForm::DomainBackslashUser) const;

private:
    std::wstring m_domain;
    std::wstring m_user;
};

} // namespace vx::users
