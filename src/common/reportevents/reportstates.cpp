#include "common/reportevents/reportstates.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string_view>

namespace vx::tarn::common {

namespace {

template <typename Value>
struct Row {
    Value value;
    std::string_view text;
};

template <typename Value>
constexpr Row<Value> table[] = {};

template <>
constexpr Row<ReportEventType> table<ReportEventType>[] = {
    {ReportEventType::OfflinePatchStatus, "Type::OfflinePatchStatus"},
    {ReportEventType::OfflinePatchStatusReturnCode, "Type::OfflinePatchStatusReturnCode"},
    {ReportEventType::OfflineMachineStatus, "Type::OfflineMachineStatus"},
    {ReportEventType::OfflineMachineStatusReturnCode, "Type::OfflineMachineStatusReturnCode"},
    {ReportEventType::OnlinePatchStatus, "Type::OnlinePatchStatus"},
    {ReportEventType::OnlinePatchStatusReturnCode, "Type::OnlinePatchStatusReturnCode"},
    {ReportEventType::OnlineMachineStatus, "Type::OnlineMachineStatus"},
    {ReportEventType::OnlineMachineStatusReturnCode, "Type::OnlineMachineStatusReturnCode"},
    {ReportEventType::ExternalRebootRequest, "Type::ExternalRebootRequest"},
};

template <>
constexpr Row<MachineStateTarget> table<MachineStateTarget>[] = {
    {MachineStateTarget::Failed, "MachineStateTarget::Failed"},
    {MachineStateTarget::Canceled, "MachineStateTarget::Canceled"},
    {MachineStateTarget::SafeRebootPending, "MachineStateTarget::SafeRebootPending"},
    {MachineStateTarget::ExternalRebootRequested, "MachineStateTarget::ExternalRebootRequested"},
    {MachineStateTarget::Rebooted, "MachineStateTarget::Rebooted"},
    {MachineStateTarget::DownloadingFiles, "MachineStateTarget::DownloadingFiles"},
    {MachineStateTarget::FileDownloadsComplete, "MachineStateTarget::FileDownloadsComplete"},
    {MachineStateTarget::FileDownloadsFailed, "MachineStateTarget::FileDownloadsFailed"},
    {MachineStateTarget::Installing, "MachineStateTarget::Installing"},
    {MachineStateTarget::Finished, "MachineStateTarget::Finished"},
};

template <>
constexpr Row<PatchStateTarget> table<PatchStateTarget>[] = {
    {PatchStateTarget::Failed, "PatchStateTarget::Failed"},
    {PatchStateTarget::Executing, "PatchStateTarget::Executing"},
    {PatchStateTarget::Executed, "PatchStateTarget::Executed"},
    {PatchStateTarget::PendingReboot, "PatchStateTarget::PendingReboot"},
    {PatchStateTarget::Canceled, "PatchStateTarget::Canceled"},
    {PatchStateTarget::FileDownloading, "PatchStateTarget::FileDownloading"},
    {PatchStateTarget::FileDownloadFailed, "PatchStateTarget::FileDownloadFailed"},
    {PatchStateTarget::FileDownloadCompleted, "PatchStateTarget::FileDownloadCompleted"},
    {PatchStateTarget::Finished, "PatchStateTarget::Finished"},
    {PatchStateTarget::Uninstalled, "PatchStateTarget::Uninstalled"},
    {PatchStateTarget::PendingPostBootActions, "PatchStateTarget::PendingPostBootActions"},
    {PatchStateTarget::LanguageDownloadNotAvailable, "PatchStateTarget::LanguageDownloadNotAvailable"},
    {PatchStateTarget::FileValidationFailed, "PatchStateTarget::FileValidationFailed"},
    {PatchStateTarget::FileIsMissing, "PatchStateTarget::FileIsMissing"},
};

template <typename Value>
nlohmann::json write(Value value)
{
    const auto& rows = table<Value>;
    const auto found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row<Value>& row) { return row.value == value; });
    return found == std::end(rows) ? nlohmann::json() : nlohmann::json(found->text);
}

template <typename Value>
bool read(const nlohmann::json& json, Value& target)
{
    if (json.is_null())
        return false;
    const auto text = json.get<std::string>();
    const auto& rows = table<Value>;
    const auto found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row<Value>& row) { return row.text == text; });
    if (found == std::end(rows))
        return false;
    target = found->value;
    return true;
}

} // namespace

nlohmann::json toJson(ReportEventType value)
{
    return write(value);
}

nlohmann::json toJson(MachineStateTarget value)
{
    return write(value);
}

nlohmann::json toJson(PatchStateTarget value)
{
    return write(value);
}

bool fromJson(const nlohmann::json& value, ReportEventType& target)
{
    return read(value, target);
}

bool fromJson(const nlohmann::json& value, MachineStateTarget& target)
{
    return read(value, target);
}

bool fromJson(const nlohmann::json& value, PatchStateTarget& target)
{
    return read(value, target);
}

} // namespace vx::tarn::common
