#include "vxtl-process/users/accountdriver.h"

#include <windows.h>

#include <lm.h>

namespace vx::users {

namespace {

AccountAnswer own(unsigned long status, unsigned char* buffer)
{
    if (!buffer)
        return {status, nullptr};
    return {status, {buffer, [](void* data) { NetApiBufferFree(data); }}};
}

class SystemAccountDriver : public AccountDriver {
public:
    std::wstring computerName() override
    {
        wchar_t name[MAX_COMPUTERNAME_LENGTH + 1];
        DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
        return GetComputerNameW(name, &length) ? std::wstring(name, length) : std::wstring();
    }

    AccountAnswer domainController(const std::wstring& domain) override
    {
        unsigned char* name = nullptr;
        const NET_API_STATUS status = NetGetDCName(nullptr, domain.c_str(), &name);
        return own(status, name);
    }

    AccountAnswer userInfo(const wchar_t* server, const std::wstring& user, unsigned long level) override
    {
        unsigned char* record = nullptr;
        const NET_API_STATUS status = NetUserGetInfo(server, user.c_str(), level, &record);
        return own(status, record);
    }
};

} // namespace

AccountDriver& systemAccountDriver()
{
    static SystemAccountDriver driver;
    return driver;
}

} // namespace vx::users
