#include "vxtl-process/users/sessiondriver.h"

#include <windows.h>

#include <wtsapi32.h>

#include <cstring>
#include <memory>
#include <span>

namespace vx::users {

namespace {

struct WtsDeleter {
    void operator()(void* memory) const noexcept { WTSFreeMemory(memory); }
};

struct WtsText {
    std::unique_ptr<wchar_t, WtsDeleter> memory;
    DWORD bytes = 0;
};

WtsText query(unsigned long session, WTS_INFO_CLASS subject)
{
    wchar_t* memory = nullptr;
    WtsText text;
    if (WTSQuerySessionInformationW(WTS_CURRENT_SERVER_HANDLE, session, subject, &memory, &text.bytes))
        text.memory.reset(memory);
    return text;
}

class SystemSessionDriver : public SessionDriver {
public:
    unsigned long activeConsoleSession() override { return WTSGetActiveConsoleSessionId(); }

    bool enumerate(std::vector<Session>& sessions) override
    {
        WTS_SESSION_INFOW* memory = nullptr;
        DWORD count = 0;
        if (!WTSEnumerateSessionsW(WTS_CURRENT_SERVER_HANDLE, 0, 1, &memory, &count))
            return false;
        const std::unique_ptr<WTS_SESSION_INFOW, WtsDeleter> owner(memory);
        for (const WTS_SESSION_INFOW& info : std::span(memory, count))
            sessions.push_back({info.SessionId, info.pWinStationName ? info.pWinStationName : L"", info.State});
        return true;
    }

    std::optional<std::wstring> userName(unsigned long session) override
    {
        const WtsText text = query(session, WTSUserName);
        return text.memory ? std::optional<std::wstring>(text.memory.get()) : std::nullopt;
    }

    std::optional<unsigned short> clientProtocol(unsigned long session) override
    {
        const WtsText text = query(session, WTSClientProtocolType);
        unsigned short protocol = 0;
        if (!text.memory || text.bytes < sizeof(protocol))
            return std::nullopt;
        std::memcpy(&protocol, text.memory.get(), sizeof(protocol));
        return protocol;
    }

    SharedHandle userToken(unsigned long session) override
    {
        HANDLE token = nullptr;
        return WTSQueryUserToken(session, &token) ? std::make_shared<KernelHandle>(token) : nullptr;
    }
};

} // namespace

SessionDriver& systemSessionDriver()
{
    static SystemSessionDriver driver;
    return driver;
}

} // namespace vx::users
