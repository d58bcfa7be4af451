#include "common/reportevents/reportevent.h"

#include "common/utils/jsonnumber.h"
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

// Both plain functions: the library's own ways are templates that come out anew for each key's length and value's type.

void put(json::object_t& object, const char* key, json value)
{
    object.emplace(std::string(key), std::move(value));
}

const json& member(const json& object, const char* key)
{
    return object.at(std::string(key));
}

// A number that has no text becomes null.
template <typename State>
json textOf(State state)
{
    const auto* row = textsOf(state).find(static_cast<std::int32_t>(state));
    return row ? json(row->text) : json();
}

// Null and a text of no state leave `state` as it is and give false.
template <typename State>
bool readState(const json& value, State& state)
{
    const auto found = value.is_null() ? std::nullopt : findText<State>(value.get<std::string>());
    state = found.value_or(state);
    return found.has_value();
}

template <typename Report>
json write(const Report& report)
{
    json::object_t object;
    put(object, "deploymentId", str::toUtf8(utils::guidToString(report.deploymentId)));
    put(object, "machineId", report.machineId);
    if constexpr (std::is_same_v<Report, PatchStateReport>)
        put(object, "patchId", report.patchId);
    put(object, "status", textOf(report.status));
    put(object, "failure", report.failure);
    put(object, "terminal", report.terminal);
    put(object, "timestamp", report.timestamp);
    return object;
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

template <typename Report>
Report readRecord(const json& value)
{
    Report report;
    report.deploymentId = readGuid(member(value, "deploymentId"));
    report.machineId = utils::readInt64(member(value, "machineId"));
    if constexpr (std::is_same_v<Report, PatchStateReport>)
        report.patchId = utils::readInt64(member(value, "patchId"));
    readState(member(value, "status"), report.status);
    report.failure = member(value, "failure").get<bool>();
    report.terminal = member(value, "terminal").get<bool>();
    report.timestamp = utils::readInt64(member(value, "timestamp"));
    return report;
}

} // namespace

json toJson(const ReportEvent& event)
{
    json::object_t object;
    put(object, "type", textOf(event.type));
    if (isOnline(event.type))
        put(object, "trackingUri", str::toUtf8(event.trackingUri));
    if (hasRecord(event.type))
        put(object, "status",
            isMachine(event.type) ? write(recordOf<MachineStateReport>(event))
                                  : write(recordOf<PatchStateReport>(event)));
    if (hasReturnCode(event.type))
        put(object, "retCode", event.retCode);
    return object;
}

ReportEvent reportEventFromJson(const json& value)
{
    ReportEvent event;
    if (!readState(member(value, "type"), event.type))
        return event;
    if (isOnline(event.type))
        event.trackingUri = str::fromUtf8(member(value, "trackingUri").get<std::string>());
    if (isMachine(event.type))
        event.record = readRecord<MachineStateReport>(member(value, "status"));
    else if (hasRecord(event.type))
        event.record = readRecord<PatchStateReport>(member(value, "status"));
    if (hasReturnCode(event.type))
        event.retCode = utils::readInt32(member(value, "retCode"));
    return event;
}

} // namespace vx::tarn::common
