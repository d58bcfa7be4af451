#include "common/reportevent.h"

#include "common/jsonnumber.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace vx::tarn::common {

namespace {

using nlohmann::json;

bool isOnline(ReportEventType type)
{
    return type >= ReportEventType::OnlinePatchStatus && type <= ReportEventType::OnlineMachineStatusReturnCode;
}

// The eight types with a record go offline/online by fours, patch/machine by twos, without/with a code.

bool hasRecord(ReportEventType type)
{
    return type >= ReportEventType::OfflinePatchStatus && type <= ReportEventType::OnlineMachineStatusReturnCode;
}

bool isMachine(ReportEventType type)
{
    return hasRecord(type) && (static_cast<std::int32_t>(type) & 2) != 0;
}

bool hasReturnCode(ReportEventType type)
{
    return hasRecord(type) && (static_cast<std::int32_t>(type) & 1) != 0;
}

json write(const PatchStateReport& report)
{
    return {{"deploymentId", str::toUtf8(utils::guidToString(report.deploymentId))}, {"machineId", report.machineId},
        {"patchId", report.patchId}, {"status", toJson(report.status)}, {"failure", report.failure},
        {"terminal", report.terminal}, {"timestamp", report.timestamp}};
}

json write(const MachineStateReport& report)
{
    return {{"deploymentId", str::toUtf8(utils::guidToString(report.deploymentId))}, {"machineId", report.machineId},
        {"status", toJson(report.status)}, {"failure", report.failure}, {"terminal", report.terminal},
        {"timestamp", report.timestamp}};
}

template <typename Report>
Report recordOf(const ReportEvent& event)
{
    const auto* report = std::get_if<Report>(&event.record);
    return report ? *report : Report{};
}

utils::Guid readGuid(const json& value)
{
    return utils::guidFromString(str::fromUtf8(value.get<std::string>()));
}

PatchStateReport readPatch(const json& value)
{
    PatchStateReport report;
    report.deploymentId = readGuid(value.at("deploymentId"));
    report.machineId = utils::readInt64(value.at("machineId"));
    report.patchId = utils::readInt64(value.at("patchId"));
    fromJson(value.at("status"), report.status);
    report.failure = value.at("failure").get<bool>();
    report.terminal = value.at("terminal").get<bool>();
    report.timestamp = utils::readInt64(value.at("timestamp"));
    return report;
}

MachineStateReport readMachine(const json& value)
{
    MachineStateReport report;
    report.deploymentId = readGuid(value.at("deploymentId"));
    report.machineId = utils::readInt64(value.at("machineId"));
    fromJson(value.at("status"), report.status);
    report.failure = value.at("failure").get<bool>();
    report.terminal = value.at("terminal").get<bool>();
    report.timestamp = utils::readInt64(value.at("timestamp"));
    return report;
}

} // namespace

json toJson(const ReportEvent& event)
{
    json object{{"type", toJson(event.type)}};
    if (isOnline(event.type))
        object["trackingUri"] = str::toUtf8(event.trackingUri);
    if (hasRecord(event.type))
        object["status"] = isMachine(event.type) ? write(recordOf<MachineStateReport>(event))
                                                 : write(recordOf<PatchStateReport>(event));
    if (hasReturnCode(event.type))
        object["retCode"] = event.retCode;
    return object;
}

ReportEvent reportEventFromJson(const json& value)
{
    ReportEvent event;
    fromJson(value.at("type"), event.type);
    if (isOnline(event.type))
        event.trackingUri = str::fromUtf8(value.at("trackingUri").get<std::string>());
    if (isMachine(event.type))
        event.record = readMachine(value.at("status"));
    else if (hasRecord(event.type))
        event.record = readPatch(value.at("status"));
    if (hasReturnCode(event.type))
        event.retCode = utils::readInt32(value.at("retCode"));
    return event;
}

} // namespace vx::tarn::common
