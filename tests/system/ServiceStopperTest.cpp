#include "rig.h"

#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "common/reboot/icomputerrebooter.h"
#include "common/registrykeynotifier/registrykeynotifier.h"
#include "service/trigger.h"
#include "service/updateservice.h"
#include "support/fakeclock.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "tarnhd/wusstopper/wuspoll.h"

#include <windows.h>

namespace rig {
namespace {

using namespace std::chrono_literals;
namespace common = vx::tarn::common;
using devhost::service::makeTrigger;
using vx::ServiceState;
using vx::tarn::WUSPoll;

struct UpdateService : devhost::service::UpdateService {
    UpdateService() : devhost::service::UpdateService(programFolder() / "wuservice.exe") {}
    ~UpdateService()
    {
        giveBack();
        devhost::service::deleteTrigger();
    }
};

/// The machine as it is, but for the reboot; and no round waits for the registry.
struct Computer : common::CommonFactory, common::IComputerRebooter, common::RegistryKeyNotifier {
    std::shared_ptr<common::IRegistryKeyNotifier> createRegistryKeyNotifier() override { return {notOwned, this}; }
    void notifyChangeKeyValue(unsigned long, const vx::IWaitable& event) override { SetEvent(event.getHandle()); }
    std::shared_ptr<common::IComputerRebooter> createComputerRebooter() override { return {notOwned, this}; }
    bool initiateReboot() override { return false; }

    const std::shared_ptr<void> notOwned;
};

/// Rounds at the machine's real service and registry, without the time between them.
class ServiceRoundsTest : public testing::Test {
protected:
    ServiceRoundsTest()
    {
        service.stop();
        store->set(settings.installation.reboot.askUser, true);
        clock.now = now * vx::ticksPerSecond;
    }
    WUSPoll poll(std::chrono::milliseconds serviceStopWait)
    {
        return {FakeSettings::handle(store), &computer, {0ms, serviceStopWait, clock.function()}};
    }
    bool round(WUSPoll& poll) { return poll.round({*stopEvent, *registryEvent}); }

    static constexpr std::int64_t now = 2'000'000'000; ///< in Unix seconds
    UpdateService service;
    FakeClock clock;
    std::shared_ptr<FakeSettings> store = std::make_shared<FakeSettings>();
    Computer computer;
    std::shared_ptr<common::Event> stopEvent = common::Event::createManualResetEvent({}, false);
    std::shared_ptr<common::Event> registryEvent = common::Event::createAutoResetEvent({}, false);
};

TEST_F(ServiceRoundsTest, stopTheServiceAgainAndAgainWhateverItAnswersAndWithoutTheKey)
{
    WUSPoll patient = poll(deadline), hasty = poll(0s);
    const struct {
        const char* is;
        std::function<void()> change;
        WUSPoll& poll;
        const char* logged;
        ServiceState then;
    } rows[] = {
        {"running", [&] { service.run(0s); }, patient, "Will try to stop WUS", ServiceState::Stopped},
        {"restarted by somebody", [&] { service.run(0s); }, patient, "Will try to stop WUS", ServiceState::Stopped},
        {"refusing", [&] { service.run(std::nullopt); }, patient, "Can't send stop control to service 'wuauserv'",
            ServiceState::Running},
        {"slow", [&] { service.run(1h); }, hasty, "Error: failed to stop WUS service in 0 seconds",
            ServiceState::StopPending},
        {"still stopping", [] {}, hasty, "WUS not running", ServiceState::StopPending},
        {"missing", [&] { service.remove(); }, patient, "Can't open service 'wuauserv'", ServiceState::Stopped},
        {"back", [&] { service.run(0s); }, patient, "Will try to stop WUS", ServiceState::Stopped},
    };
    makeTrigger(now);
    round(patient);
    round(hasty);
    devhost::service::deleteTrigger();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.is);
        row.change();
        const LogCapture log;
        EXPECT_TRUE(round(row.poll));
        EXPECT_EQ(log.count(row.logged), 1u) << log.text();
        EXPECT_EQ(service.state(), row.then);
    }
}

class ServiceStopperTest : public SystemTest {
protected:
    UpdateService service;
};

TEST_F(ServiceStopperTest, isStoppedInTheMiddleOfAStopThatTakesLongAndStopsTheServiceInItsNextLife)
{
    EXPECT_EQ(command("service slow --seconds 3600"), 0u);
    startHost(Wait::ForProcessing);
    waitForLog("WUS stopper trigger key found as: 0");
    EXPECT_EQ(command("wus-trigger"), 0u);
    waitForLog("Will try to stop WUS");
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(stopHost(), 0u);
    EXPECT_LT(std::chrono::steady_clock::now() - before, 8s) << "nobody waits for the service any more";
    EXPECT_EQ(service.state(), ServiceState::StopPending);

    EXPECT_EQ(command("service start"), 0u);
    startHost(Wait::ForProcessing);
    waitForLog("Will try to stop WUS", 2);
    waitFor(folder.path(), "the end of the service", [&] { return service.state() == ServiceState::Stopped; });
}

} // namespace
} // namespace rig
