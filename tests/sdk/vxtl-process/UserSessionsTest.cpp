#include "vxtl-process/users/usersessions.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <map>

using namespace vx;
using namespace vx::users;
using testing::ElementsAre;

namespace {

struct FakeSessionDriver : SessionDriver {
    bool fails = false;
    std::vector<Session> sessions;
    std::map<unsigned long, std::optional<std::wstring>> users;
    std::map<unsigned long, std::optional<unsigned short>> protocols;

    unsigned long activeConsoleSession() override { return 1; }
    bool enumerate(std::vector<Session>& result) override
    {
        result = sessions;
        SetLastError(ERROR_ACCESS_DENIED);
        return !fails;
    }
    std::optional<std::wstring> userName(unsigned long id) override { return users[id]; }
    std::optional<unsigned short> clientProtocol(unsigned long id) override { return protocols[id]; }
    SharedHandle userToken(unsigned long) override
    {
        SetLastError(ERROR_NO_TOKEN);
        return nullptr;
    }
};

} // namespace

TEST(UserSessions, listsTheConsoleThenActiveSessionsWithAUser)
{
    FakeSessionDriver driver;
    support::LogCapture log;
    driver.sessions = {{0, L"sERVICES", 0}, {7, L"RDP-Tcp#1", 0}, {1, L"Console", 0}, {2, L"idle", 4}, {3, L"none", 0},
        {4, L"blank", 0}, {5, L"no protocol", 0}, {6, L"ICA", 0}, {8, L"other", 0}};
    driver.users = {{0, L"sys"}, {7, L"ann"}, {1, L"joe"}, {2, L"off"}, {4, L""}, {5, L"odd"}, {6, L"cy"}, {8, L"di"}};
    driver.protocols = {{0, 0}, {7, 2}, {1, 0}, {2, 2}, {3, 2}, {4, 2}, {6, 1}, {8, 9}};
    EXPECT_THAT(getUserSessions(driver), ElementsAre(1, 7, 6, 8));
    for (const char* user : {"7, ann, RDP", "1, joe, CONSOLE", "6, cy, ICA", "8, di, UNKNOWN"})
        EXPECT_TRUE(log.has(4, std::string("WTS Found logged in user (") + user + ")")) << log.text();
    EXPECT_EQ(log.count("WTS Found"), 4u);
    driver.fails = true;
    EXPECT_THAT(getUserSessions(driver), ElementsAre(1)) << "the console is known without the list";
    EXPECT_TRUE(log.has(2, "WTS WTSEnumerateSessions failed. LastError: 5")) << log.text();
    const auto token = [&] { getInteractivelyLoggedUserTokenForConsoleId(1, driver); };
    EXPECT_EQ(support::thrown<Win32Exception>(token).code(), ERROR_NO_TOKEN);
}
