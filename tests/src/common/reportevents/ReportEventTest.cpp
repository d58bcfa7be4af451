#include "common/reportevent.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace vx::tarn::common {
namespace {

using nlohmann::json;
using Type = ReportEventType;

const auto guid = utils::guidFromString(L"00112233-4455-6677-8899-aabbccddeeff");

ReportEvent event(Type type, bool machine)
{
    ReportEvent result;
    result.type = type;
    if (machine)
        result.record = MachineStateReport{guid, 1, MachineStateTarget::Rebooted, true, false, 5};
    else
        result.record = PatchStateReport{guid, 1, 2, PatchStateTarget::PendingPostBootActions, false, true, 5};
    return result;
}

TEST(ReportEvent, writesWhatItsTypeCarriesAndReadsItBack)
{
    const struct {
        Type type;
        bool machine, online, code;
        const char* text;
    } rows[] = {
        {Type::OfflinePatchStatus, false, false, false, "Type::OfflinePatchStatus"},
        {Type::OfflinePatchStatusReturnCode, false, false, true, "Type::OfflinePatchStatusReturnCode"},
        {Type::OfflineMachineStatus, true, false, false, "Type::OfflineMachineStatus"},
        {Type::OfflineMachineStatusReturnCode, true, false, true, "Type::OfflineMachineStatusReturnCode"},
        {Type::OnlinePatchStatus, false, true, false, "Type::OnlinePatchStatus"},
        {Type::OnlinePatchStatusReturnCode, false, true, true, "Type::OnlinePatchStatusReturnCode"},
        {Type::OnlineMachineStatus, true, true, false, "Type::OnlineMachineStatus"},
        {Type::OnlineMachineStatusReturnCode, true, true, true, "Type::OnlineMachineStatusReturnCode"},
    };
    for (const auto& row : rows) {
        ReportEvent written = event(row.type, row.machine);
        written.trackingUri = L"http://a/\u00fc";
        written.retCode = -7;
        const json object = toJson(written);
        EXPECT_EQ(object["type"], row.text);
        EXPECT_EQ(object.contains("trackingUri"), row.online) << row.text;
        EXPECT_EQ(object.contains("retCode"), row.code) << row.text;
        EXPECT_EQ(object["status"].contains("patchId"), !row.machine) << row.text;
        EXPECT_EQ(object["status"]["deploymentId"], "00112233-4455-6677-8899-AABBCCDDEEFF");
        if (!row.online)
            written.trackingUri.clear();
        if (!row.code)
            written.retCode = 0;
        EXPECT_TRUE(reportEventFromJson(object) == written) << object;
    }
}

TEST(ReportEvent, writesARebootRequestAsItsTypeAlone)
{
    const ReportEvent request{Type::ExternalRebootRequest, {}, 3, L"x"};
    EXPECT_EQ(toJson(request), json({{"type", "Type::ExternalRebootRequest"}}));
}

TEST(ReportEvent, requiresEveryKeyAndTheRightTypes)
{
    json good = toJson(event(Type::OfflinePatchStatusReturnCode, false));
    for (const char* key : {"deploymentId", "machineId", "patchId", "status", "failure", "terminal", "timestamp"}) {
        json bad = good;
        bad["status"].erase(key);
        EXPECT_THROW(reportEventFromJson(bad), json::out_of_range) << key;
    }
    json bad = good;
    bad["status"]["failure"] = 1;
    EXPECT_THROW(reportEventFromJson(bad), json::type_error);
    bad = good;
    bad["status"]["deploymentId"] = "zz";
    EXPECT_THROW(reportEventFromJson(bad), std::runtime_error);
    bad = good;
    bad["retCode"] = "1";
    EXPECT_THROW(reportEventFromJson(bad), json::type_error);
    bad["retCode"] = true;
    EXPECT_EQ(reportEventFromJson(bad).retCode, 1);
}

TEST(ReportEvent, passesUnknownStatesOver)
{
    EXPECT_TRUE(toJson(static_cast<PatchStateTarget>(7)).is_null());
    auto state = MachineStateTarget::Installing;
    fromJson("MachineStateTarget::Dancing", state);
    EXPECT_EQ(state, MachineStateTarget::Installing);
    // The same number stands for different words in the two vocabularies.
    EXPECT_EQ(toJson(MachineStateTarget::Canceled), "MachineStateTarget::Canceled");
    EXPECT_EQ(toJson(PatchStateTarget::Canceled), "PatchStateTarget::Canceled");
}

} // namespace
} // namespace vx::tarn::common
