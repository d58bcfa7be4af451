#include "common/updaterlauncher/updaterlauncher.h"
#include "support/childtest.h"
#include "support/logcapture.h"
#include "support/record.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"

#include <future>

using namespace std::chrono_literals;
using namespace vx;
using namespace vx::tarn::common;

namespace {

struct UpdaterLauncherTest : testing::Test {
    bool started() { return sync::waitForSingleObject(*event, 0); }

    UpdaterLauncherOptions options = {
        support::uniqueName(L"Global\\LauncherTestMutex"), support::uniqueName(L"Global\\LauncherTestEvent"), 30s, 1ms};
    std::shared_ptr<Event> event =
        createEvent(false, false, options.eventName, false, sync::accessibleSecurityDescriptor());
    support::LogCapture log;
};

} // namespace

TEST_F(UpdaterLauncherTest, startsAndRemembersWhen)
{
    UpdaterLauncher launcher(options);
    launcher.startScanIfOlderThan(3600);
    EXPECT_TRUE(started()) << "the first call starts";
    launcher.startScanIfOlderThan(3600);
    EXPECT_FALSE(started());
    launcher.startScanAt(5);
    EXPECT_TRUE(started());
    EXPECT_TRUE(log.has(4, "Scan start time: 5")) << log.text();
    launcher.startScanIfOlderThan(3600);
    EXPECT_TRUE(started()) << "the last start lies in 1970";
}

TEST_F(UpdaterLauncherTest, waitsForTheOneWhoHoldsTheMutex)
{
    UpdaterLauncher launcher(options);
    sync::GlobalMutex mutex(options.mutexName);
    mutex.lock();
    auto start = std::async(std::launch::async, [&] { launcher.startScan(); });
    EXPECT_EQ(start.wait_for(support::moment), std::future_status::timeout);
    EXPECT_FALSE(started());
    mutex.unlock();
    start.get();
    EXPECT_TRUE(started());
}

TEST_F(UpdaterLauncherTest, waitsForTheEventToBeMadeAndGivesUpWhenNobodyMakesIt)
{
    event.reset();
    auto launcher = std::async(std::launch::async, [&] { return std::make_unique<UpdaterLauncher>(options); });
    event = createEvent(false, false, options.eventName, false);
    launcher.get()->startScan();
    EXPECT_TRUE(started());
    options.eventName += L"-missing";
    options.openTimeout = 5ms;
    const auto failure = support::thrown<Win32Exception>([&] { UpdaterLauncher never(options); });
    EXPECT_EQ(failure.code(), ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(log.has(2, "2")) << log.text();
}
