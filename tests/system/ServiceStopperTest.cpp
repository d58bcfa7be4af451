#include "rig.h"

#include "service/trigger.h"
#include "service/updateservice.h"

namespace rig {
namespace {

using namespace std::chrono_literals;
using vx::ServiceState;

struct UpdateService : devhost::service::UpdateService {
    UpdateService() : devhost::service::UpdateService(programFolder() / "wuservice.exe") {}
    ~UpdateService()
    {
        giveBack();
        devhost::service::deleteTrigger();
    }
};

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
