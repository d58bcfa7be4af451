#include "account.h"

#include <cstddef>
#include <memory>
#include <windows.h>

#include <sddl.h>

namespace VxQrlLogging::account {

namespace {

// What GetTokenInformation gives of the process token: a record with what it points to behind it.
template <typename Record>
class TokenRecord {
public:
    explicit TokenRecord(TOKEN_INFORMATION_CLASS kind)
    {
        HANDLE token = nullptr;
        if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token))
            return;
        DWORD size = 0;
        GetTokenInformation(token, kind, nullptr, 0, &size);
        std::unique_ptr<std::byte[]> data(size ? new std::byte[size] : nullptr);
        if (data && GetTokenInformation(token, kind, data.get(), size, &size))
            m_data = std::move(data);
        CloseHandle(token);
    }

    explicit operator bool() const { return m_data != nullptr; }
    const Record* operator->() const { return reinterpret_cast<const Record*>(m_data.get()); }

private:
    std::unique_ptr<std::byte[]> m_data;
};

} // namespace

bool isAdministrator()
{
    SID_IDENTIFIER_AUTHORITY authority = {SECURITY_NT_AUTHORITY};
    PSID administrators = nullptr;
    if (!AllocateAndInitializeSid(
            &authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0, &administrators))
        return false;
    BOOL member = FALSE;
    const bool known = CheckTokenMembership(nullptr, administrators, &member);
    FreeSid(administrators);
    return known && member;
}

bool hasLowIntegrity()
{
    const TokenRecord<TOKEN_MANDATORY_LABEL> label(TokenIntegrityLevel);
    if (!label)
        return false;
    const PSID sid = label->Label.Sid;
    const DWORD count = *GetSidSubAuthorityCount(sid);
    return count > 0 && *GetSidSubAuthority(sid, count - 1) == SECURITY_MANDATORY_LOW_RID;
}

std::wstring userSid()
{
    const TokenRecord<TOKEN_USER> user(TokenUser);
    wchar_t* text = nullptr;
    if (!user || !ConvertSidToStringSidW(user->User.Sid, &text))
        return {};
    const std::unique_ptr<wchar_t, decltype(&LocalFree)> owner(text, LocalFree);
    return text;
}

} // namespace VxQrlLogging::account
