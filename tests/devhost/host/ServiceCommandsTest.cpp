#include "commandtest.h"
#include "service/stoptime.h"
#include "vxtl/registry.h"

namespace {

using namespace support;

class ServiceCommandsTest : public CommandTest {
protected:
    ServiceCommandsTest() { EXPECT_EQ(call("service restore").code, 0); }
    ~ServiceCommandsTest() override { EXPECT_EQ(call("service restore").code, 0); }
    const std::shared_ptr<vx::registry::RegistryKey> machine = vx::registry::createWin32Registry()->localMachine();
};

} // namespace

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
