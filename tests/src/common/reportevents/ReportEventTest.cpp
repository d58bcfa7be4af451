#include "common/reportevents/reportevent.h"

#include <nlohmann/json.hpp>

using namespace vx::tarn::common;
using nlohmann::json;

const json machineRecord{{"deploymentId", "00112233-4455-6677-8899-AABBCCDDEEFF"}, {"machineId", 1},
    {"status", "MachineStateTarget::Rebooted"}, {"failure", true}, {"terminal", false}, {"timestamp", 5}};
const json patchRecord{{"deploymentId", "00112233-4455-6677-8899-AABBCCDDEEFF"}, {"machineId", 1}, {"patchId", 2},
    {"status", "PatchStateTarget::PendingPostBootActions"}, {"failure", false}, {"terminal", true}, {"timestamp", 5}};

TEST(ReportEvent, writesWhatItsTypeCarriesAndReadsAllOfItBack)
{
    const auto guid = utils::guidFromString(L"00112233-4455-6677-8899-aabbccddeeff");
    // The types go offline and online by fours, patch and machine by twos, without and with a code.
    for (int number = 0; number < 8; ++number) {
        const bool online = number & 4, machine = number & 2, code = number & 1;
        ReportEvent event{static_cast<ReportEventType>(number), {}, -7, L"http://a/\u00fc"};
        if (machine)
            event.record = MachineStateReport{guid, 1, MachineStateTarget::Rebooted, true, false, 5};
        else
            event.record = PatchStateReport{guid, 1, 2, PatchStateTarget::PendingPostBootActions, false, true, 5};
        json text{{"type", std::string(online ? "Type::Online" : "Type::Offline") +
                               (machine ? "MachineStatus" : "PatchStatus") + (code ? "ReturnCode" : "")},
            {"status", machine ? machineRecord : patchRecord}};
        if (online)
            text["trackingUri"] = "http://a/\u00fc";
        if (code)
            text["retCode"] = -7;
        EXPECT_EQ(toJson(event), text);
        const ReportEvent read{event.type, event.record, code ? -7 : 0, online ? event.trackingUri : L""};
        EXPECT_TRUE(reportEventFromJson(text) == read) << text;
        for (const auto& object : {json::json_pointer(""), json::json_pointer("/status")})
            for (const auto& member : text[object].items()) {
                json bad = text;
                bad[object].erase(member.key());
                EXPECT_THROW(reportEventFromJson(bad), json::out_of_range) << bad;
            }
    }
    EXPECT_EQ(
        toJson({ReportEventType::ExternalRebootRequest, {}, 3, L"x"}), json({{"type", "Type::ExternalRebootRequest"}}));
}

TEST(ReportEvent, requiresTheRightKindsButPassesUnknownStatesAndTypesOver)
{
    const auto with = [](const char* path, const json& value) {
        json event{{"type", "Type::OfflineMachineStatusReturnCode"}, {"status", machineRecord}, {"retCode", 1}};
        event[json::json_pointer(path)] = value;
        return reportEventFromJson(event);
    };
    EXPECT_EQ(with("/retCode", true).retCode, 1);
    EXPECT_THROW(with("/retCode", "1"), json::type_error);
    EXPECT_THROW(with("/status/failure", 1), json::type_error);
    EXPECT_THROW(with("/status/deploymentId", "zz"), std::runtime_error);
    EXPECT_THROW(with("/status/status", 5), json::type_error);
    EXPECT_THROW(with("/type", 5), json::type_error);
    for (const json& unknown : {json("Dancing"), json("MachineStateTarget::Dancing"), json()}) {
        const ReportEvent event = with("/status/status", unknown);
        EXPECT_EQ(std::get<MachineStateReport>(event.record).timestamp, 5) << unknown;
        EXPECT_TRUE(reportEventFromJson(toJson(event)) == event) << unknown;
        EXPECT_TRUE(with("/type", unknown) == ReportEvent{}) << unknown;
    }
}
