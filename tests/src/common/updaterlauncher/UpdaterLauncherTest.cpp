#include "common/updaterlauncher.h"
#include "support/childtest.h"
#include "support/logcapture.h"
#include "vxtl/win32exception.h"

#include <gmock/gmock.h>

#include <future>

namespace vx::tarn::common {
namespace {

using namespace std::chrono_literals;

class UpdaterLauncherTest : public testing::Test {
protected:
    bool started() { return sync::waitForSingleObject(*m_event, 0); }

    const UpdaterLauncherOptions m_options = {
        support::uniqueName(L"Global\\LauncherTestMutex"), support::uniqueName(L"Global\\LauncherTestEvent"), 30s, 1ms};
    std::shared_ptr<Event> m_event =
        createEvent(false, false, m_options.eventName, false, sync::accessibleSecurityDescriptor());
};

TEST_F(UpdaterLauncherTest, startsAndRemembersWhen)
{
    support::LogCapture log;
    UpdaterLauncher launcher(m_options);
    launcher.startScanIfOlderThan(3600);
    EXPECT_TRUE(started()) << "the first call starts";
    launcher.startScanIfOlderThan(3600);
    EXPECT_FALSE(started());
    launcher.startScan();
    EXPECT_TRUE(started());
    launcher.startScanAt(5);
    EXPECT_TRUE(started());
    EXPECT_TRUE(log.has(4, "Scan start time: 5")) << log.text();
    launcher.startScanIfOlderThan(3600);
    EXPECT_TRUE(started()) << "the last start lies in 1970";
}

TEST_F(UpdaterLauncherTest, waitsForTheOneWhoHoldsTheMutex)
{
    UpdaterLauncher launcher(m_options);
    sync::GlobalMutex mutex(m_options.mutexName);
    mutex.lock();
    auto start = std::async(std::launch::async, [&] { launcher.startScan(); });
    EXPECT_EQ(start.wait_for(50ms), std::future_status::timeout);
    EXPECT_FALSE(started());
    mutex.unlock();
    start.get();
    EXPECT_TRUE(started());
}

TEST_F(UpdaterLauncherTest, waitsForTheEventToBeMade)
{
    m_event.reset();
    auto launcher = std::async(std::launch::async, [&] { return std::make_unique<UpdaterLauncher>(m_options); });
    m_event = createEvent(false, false, m_options.eventName, false);
    launcher.get()->startScan();
    EXPECT_TRUE(started());
}

TEST_F(UpdaterLauncherTest, givesUpWhenNobodyMakesTheEvent)
{
    using namespace testing;
    support::LogCapture log;
    auto options = m_options;
    options.eventName += L"-missing";
    options.openTimeout = 5ms;
    EXPECT_THAT([&] { UpdaterLauncher launcher(options); },
        Throws<Win32Exception>(AllOf(Property(&Win32Exception::code, ERROR_FILE_NOT_FOUND),
            Property(&Win32Exception::reason, L"TarnpatchLauncherImpl::openStartEventImpl failed"),
            Property(
                &std::exception::what, HasSubstr("Function: vx::tarn::common::UpdaterLauncher::openStartEvent,")))));
    EXPECT_TRUE(log.has(2, "2")) << log.text();
}

} // namespace
} // namespace vx::tarn::common
