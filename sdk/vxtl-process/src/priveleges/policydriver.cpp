#include "priveleges/policydriver.h"

#include <windows.h>

#include <ntsecapi.h>

#include <span>

namespace vx::priveleges {

namespace {

struct LsaDeleter {
    void operator()(void* memory) const noexcept { LsaFreeMemory(memory); }
};

LSA_UNICODE_STRING lsaText(const wchar_t* text)
{
    const auto bytes = static_cast<USHORT>(std::char_traits<wchar_t>::length(text) * sizeof(wchar_t));
    return {bytes, static_cast<USHORT>(bytes + sizeof(wchar_t)), const_cast<wchar_t*>(text)};
}

PSID native(const Sid& sid)
{
    return const_cast<unsigned char*>(sid.data());
}

class SystemPolicyDriver : public PolicyDriver {
public:
    long open(const wchar_t* target, unsigned long access, std::shared_ptr<void>& policy) override
    {
        LSA_OBJECT_ATTRIBUTES attributes{};
        LSA_UNICODE_STRING name = lsaText(target ? target : L"");
        LSA_HANDLE handle = nullptr;
        const NTSTATUS status = LsaOpenPolicy(target ? &name : nullptr, &attributes, access, &handle);
        if (status == 0)
            policy.reset(handle, [](void* opened) { LsaClose(opened); });
        return status;
    }

    unsigned long errorOf(long status) override { return LsaNtStatusToWinError(status); }

    bool lookUpSid(const wchar_t* target, const std::wstring& account, Sid& sid) override
    {
        DWORD sidSize = 0;
        DWORD domainSize = 0;
        SID_NAME_USE use{};
        if (!LookupAccountNameW(target, account.c_str(), nullptr, &sidSize, nullptr, &domainSize, &use) &&
            GetLastError() != ERROR_INSUFFICIENT_BUFFER)
            return false;
        sid.resize(sidSize);
        std::wstring domain(domainSize, L'\0');
        return LookupAccountNameW(target, account.c_str(), sid.data(), &sidSize, domain.data(), &domainSize, &use) !=
               FALSE;
    }

    long enumerateRights(void* policy, const Sid& sid, std::vector<std::wstring>& rights) override
    {
        LSA_UNICODE_STRING* memory = nullptr;
        ULONG count = 0;
        const NTSTATUS status = LsaEnumerateAccountRights(policy, native(sid), &memory, &count);
        if (status != 0)
            return status;
        const std::unique_ptr<LSA_UNICODE_STRING, LsaDeleter> owner(memory);
        for (const LSA_UNICODE_STRING& right : std::span(memory, count))
            rights.emplace_back(right.Buffer, right.Length / sizeof(wchar_t));
        return status;
    }

    long addRight(void* policy, const Sid& sid, const std::wstring& right) override
    {
        LSA_UNICODE_STRING text = lsaText(right.c_str());
        return LsaAddAccountRights(policy, native(sid), &text, 1);
    }

    long removeRight(void* policy, const Sid& sid, const std::wstring& right) override
    {
        LSA_UNICODE_STRING text = lsaText(right.c_str());
        return LsaRemoveAccountRights(policy, native(sid), FALSE, &text, 1);
    }
};

} // namespace

PolicyDriver& systemPolicyDriver()
{
    static SystemPolicyDriver driver;
    return driver;
}

} // namespace vx::priveleges
