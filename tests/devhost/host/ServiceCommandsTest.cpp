#include "commandtest.h"
#include "service/stoptime.h"
#include "service/trigger.h"
#include "vxtl/registry.h"
#include "vxtl/service.h"

namespace {

using namespace support;

class ServiceCommandsTest : public CommandTest {
protected:
    ServiceCommandsTest() { EXPECT_EQ(call("service restore").code, 0); }
    ~ServiceCommandsTest() override
    {
        EXPECT_EQ(call("service restore").code, 0);
        devhost::service::deleteTrigger();
    }
    static json played(const char* state, const json& stopSeconds)
    {
        return {{"service", "wuauserv"}, {"state", state}, {"player", "stand-in"}, {"stop_seconds", stopSeconds}};
    }

    const std::shared_ptr<vx::registry::RegistryKey> machine = vx::registry::createWin32Registry()->localMachine();
};

} // namespace

TEST_F(ServiceCommandsTest, bringAboutWhatTheyAreNamedForWhateverTheyFind)
{
    const json missing{{"service", "wuauserv"}, {"state", "missing"}, {"player", "nobody"}};
    const std::pair<const char*, json> rows[] = {
        {"start", played("running", 0)},
        {"stubborn", played("running", nullptr)},
        {"missing", missing},
        {"stubborn", played("running", nullptr)},
        {"stop", played("stopped", 0)},
        {"missing", missing},
        {"slow --seconds 80000", played("running", 80000)},
        {"state", played("running", 80000)},
    };
    for (const auto& [action, expected] : rows)
        for (const char* time : {"first", "again"}) {
            SCOPED_TRACE(std::string(action) + ", " + time);
            EXPECT_EQ(callJson(std::string("service ") + action), expected);
        }
    vx::Service(L"wuauserv").beginStop();
    EXPECT_EQ(callJson("service"), played("stopping", 80000));
    EXPECT_EQ(callJson("service start"), played("running", 0));
}

TEST_F(ServiceCommandsTest, giveBackWhatWasThereWhereverTheyWereInterrupted)
{
    const auto own = machine->openKey(L"SYSTEM\\CurrentControlSet\\Services\\wuauserv");
    const auto program = own->getStringValue(L"ImagePath");
    own->createKey(L"Parameters")->setStringValue(L"Own", L"kept");
    // What is left when somebody ends the command between its keeping of this and its change.
    machine->createKey(std::wstring(devhost::service::keptKeyPath) + L"\\Original")
        ->setStringValue(L"ImagePath", L"half");
    for (const std::string action : {"restore", "start", "missing"}) {
        SCOPED_TRACE(action);
        call("service " + action);
        EXPECT_EQ(callJson("service restore").at("player"), "system");
        const auto now = machine->openKey(L"SYSTEM\\CurrentControlSet\\Services\\wuauserv", vx::registry::allAccess);
        EXPECT_EQ(now->getStringValue(L"ImagePath"), program);
        EXPECT_EQ(now->openKey(L"Parameters")->getStringValue(L"Own"), L"kept");
    }
    machine->deleteTree(L"SYSTEM\\CurrentControlSet\\Services\\wuauserv\\Parameters");
}

TEST_F(ServiceCommandsTest, makeAndDeleteTheTrigger)
{
    EXPECT_EQ(callJson("wus-trigger 2026-01-31T12:00:00").at("created_time"), 1'769'860'800);
    EXPECT_EQ(callJson("wus-trigger -2 --type dword").at("created_time"), -2);
    EXPECT_EQ(callJson("wus-trigger none").at("found"), true);
    EXPECT_EQ(callJson("wus-trigger none").at("found"), false);
    expectOneLineEach({
        {"wus-trigger 5s", 2, "is neither none nor seconds nor a time"},
        {"wus-trigger 5 --type float", 2, "--type"},
        {"service restart", 2, "ACTION"},
    });
}
