#include "common/updaterlauncher/updaterlauncher.h"
#include "support/childtest.h"
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
    launcher.startScanIfOlderThan(3600);
    EXPECT_TRUE(started()) << "the last start lies in 1970";
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
}
