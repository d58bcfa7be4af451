#include "alert-api/vxalertapi.h"
#include "commandtest.h"
#include "common/factory/commonfactory.h"
#include "support/machine.h"
#include "support/thrown.h"

namespace {

using namespace support;

class RecordsTest : public CommandTest {
protected:
    RecordsTest() { SetEnvironmentVariableW(L"ProgramData", folder.path().c_str()); }

    const Machine own;
    vx::tarn::common::CommonFactory factory;
};

} // namespace

TEST_F(RecordsTest, anAlertThatFailsHasTheFirstCodeAndTheTextOfTheSecondCall)
{
    EXPECT_EQ(call("alerts").output, "none so far\n");
    call("system-fault VxAlertApi::SendAlert 7");
    call("system-fault VxAlertApi::SendAlert 1");
    const auto alerts = factory.createAlertApi();
    const auto send = [&] { alerts->sendAlert("\xC3\xA9", {{"count", 2}}); };
    const auto failure = thrown<vx::VxAlertException>(send);
    EXPECT_EQ(static_cast<int>(failure.code()), 7);
    EXPECT_THAT(failure.wideWhat(),
        testing::StartsWith(L"Type: VxAlertException, Reason: The alert could not be recorded, Alert: \xE9, Function: "
                            L"vx::alerts::VxAlertApi::sendAlert, "));
    call("system-fault VxAlertApi::SendAlert 7 --count 2");
    EXPECT_THAT(thrown<vx::VxAlertException>([&] { alerts->sendAlert("\xE9", {}); }).reason(),
        testing::EndsWith(L", Alert: \xFFFD"));
    const auto tooDeep = json::parse(std::string(100, '[') + std::string(100, ']'));
    EXPECT_EQ(static_cast<int>(thrown<vx::VxAlertException>([&] { alerts->sendAlert("", tooDeep); }).code()), 2);
    send();
    EXPECT_THAT(call("alerts").output, testing::EndsWith("Z  alert: \xC3\xA9 {\"count\":2}\n"));
    EXPECT_EQ(callJson("alerts").at("data"), json({{"count", 2}}));
    const auto missing = [](auto&) { return vx::delayload::LoadResult{vx::delayload::LoadStatus::Other, "", ""}; };
    EXPECT_EQ(
        thrown<vx::BaseException>([&] { vx::alerts::VxAlertApi{missing}; }).reason(), L"Cannot load Alert API library");
}
