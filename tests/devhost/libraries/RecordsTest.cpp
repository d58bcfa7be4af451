#include "alert-api/vxalertapi.h"
#include "commandtest.h"
#include "common/factory/commonfactory.h"
#include "flyer-api/flyerapiimpl.h"
#include "flyer-api/flyerdefinition.h"
#include "flyer-api/vxflyererror.h"
#include "records/recordfile.h"
#include "support/machine.h"
#include "support/thrown.h"

#include <fstream>

namespace {

using namespace support;
using testing::HasSubstr;
using namespace vx::flyers::actions;

class RecordsTest : public CommandTest {
protected:
    RecordsTest() { SetEnvironmentVariableW(L"ProgramData", folder.path().c_str()); }

    const Machine own;
    vx::tarn::common::CommonFactory factory;
    const vx::flyers::FlyerDefinition flyer{1, L"Heading", L"Text \xE9", {L"one", L"two"},
        {{true, L"Now", DropDownAction(1, "a")}}, {{L"Later", {}}}, ButtonAction(4, {}, "b")};
};

} // namespace

TEST_F(RecordsTest, keepWhatTheLibrariesWereToldOnce)
{
    // The call for the error's text succeeds, so the flyer is shown all the same.
    call("system-fault VxFlyer::ShowFlyer 5");
    const auto show = [&] { factory.createFlyerApi()->showFlyer(flyer, 17); };
    EXPECT_EQ(static_cast<int>(thrown<vx::VxFlyerException>(show).code()), 5);
    auto shown = callJson("flyers");
    EXPECT_EQ(shown["pid"], GetCurrentProcessId());
    shown.erase("pid");
    shown.erase("time");
    EXPECT_EQ(shown, json::parse(R"({"type": 3, "heading": "Heading", "message": "Text é", "details": "one<br/>two",
        "menu": [{"text": "Now", "selected": true, "action": {"type": 1, "first": "a", "second": null}}],
        "buttons": [{"text": "Later", "action": null}],
        "action": {"type": 3, "first": null, "second": "b"}, "argument": 17})"));
    EXPECT_THAT(call("flyers").output,
        HasSubstr("Z  flyer: Heading - Text \xC3\xA9 - one<br/>two [menu: Now (selected)] [buttons: Later]\n"));
    const devhost::records::RecordFile file(instance, devhost::records::flyers);
    std::uint64_t position = std::filesystem::file_size(file.path());
    for (const auto& [type, action] : {std::pair(0, 1), {2, 2}, {3, 3}})
        factory.createFlyerApi()->showFlyer({type, L"", L"", {L"one"}, {}, {}, ButtonAction(action)}, 0);
    Texts numbers;
    for (const json& record : file.read(position))
        numbers.push_back(record["type"].dump() + record["action"]["type"].dump() + record["details"].dump());
    EXPECT_THAT(numbers, testing::ElementsAre("21\"one\"", "12\"one\"", "00\"one\""));
    for (const auto& [written, lines] : {std::pair("{}", 0u), {"\n", 1u}}) {
        std::ofstream(file.path(), std::ios::app) << written;
        EXPECT_EQ(file.read(position).size(), lines) << "a line that is still being written waits for its end";
    }
}

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

TEST_F(RecordsTest, aRunningHostShowsWhatAnyProcessTells)
{
    const auto alerts = factory.createAlertApi();
    alerts->sendAlert("before", {});
    const auto host = tarnhost("run --plugin \"" + (programFolder() / "host-test-plugin.dll").string() +
                               "\" --store \"" + storeFile.string() + '"');
    ASSERT_EQ(call("status --wait 60").code, 0) << host.errors();
    factory.createFlyerApi()->showFlyer(flyer, 0);
    alerts->sendAlert("after", {});
    for (const std::string text : {"  flyer: Heading", "  alert: after null"})
        waitFor(folder.path(), text, [&] { return host.output().find(text) != std::string::npos; });
    EXPECT_EQ(host.output().find("before"), std::string::npos);
    call("stop");
}
