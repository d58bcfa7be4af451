#pragma once

#include "vxtl/enumtext.h"

namespace vx::tarn::common {

/// Which form an event has.
enum class ReportEventType : std::int32_t {
    OfflinePatchStatus = 0,
    OfflinePatchStatusReturnCode = 1,
    OfflineMachineStatus = 2,
    OfflineMachineStatusReturnCode = 3,
    OnlinePatchStatus = 4,
    OnlinePatchStatusReturnCode = 5,
    OnlineMachineStatus = 6,
    OnlineMachineStatusReturnCode = 7,
    ExternalRebootRequest = 8
};
inline constexpr auto reportEventTypeTexts = enumTexts<ReportEventType>({
    {ReportEventType::OfflinePatchStatus, "Type::OfflinePatchStatus"},
    {ReportEventType::OfflinePatchStatusReturnCode, "Type::OfflinePatchStatusReturnCode"},
    {ReportEventType::OfflineMachineStatus, "Type::OfflineMachineStatus"},
    {ReportEventType::OfflineMachineStatusReturnCode, "Type::OfflineMachineStatusReturnCode"},
    {ReportEventType::OnlinePatchStatus, "Type::OnlinePatchStatus"},
    {ReportEventType::OnlinePatchStatusReturnCode, "Type::OnlinePatchStatusReturnCode"},
    {ReportEventType::OnlineMachineStatus, "Type::OnlineMachineStatus"},
    {ReportEventType::OnlineMachineStatusReturnCode, "Type::OnlineMachineStatusReturnCode"},
    {ReportEventType::ExternalRebootRequest, "Type::ExternalRebootRequest"},
});
constexpr EnumTexts textsOf(ReportEventType)
{
    return {"ReportEventType", reportEventTypeTexts};
}

/// States of a machine in a deployment. The numbers are those of the management side.
enum class MachineStateTarget : std::int32_t {
    Failed = 1,
    Canceled = 10,
    SafeRebootPending = 34,
    ExternalRebootRequested = 35,
    Rebooted = 36,
    DownloadingFiles = 37,
    FileDownloadsComplete = 41,
    FileDownloadsFailed = 42,
    Installing = 43,
    Finished = 99
};
inline constexpr auto machineStateTargetTexts = enumTexts<MachineStateTarget>({
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
});
constexpr EnumTexts textsOf(MachineStateTarget)
{
    return {"MachineStateTarget", machineStateTargetTexts};
}

/// States of a patch in a deployment. The numbers are those of the management side.
enum class PatchStateTarget : std::int32_t {
    Failed = 1,
    Executing = 4,
    Executed = 5,
    PendingReboot = 6,
    Canceled = 10,
    FileDownloading = 38,
    FileDownloadFailed = 39,
    FileDownloadCompleted = 40,
    Finished = 99,
    Uninstalled = 100,
    PendingPostBootActions = 104,
    LanguageDownloadNotAvailable = 191,
    FileValidationFailed = 192,
    FileIsMissing = 193
};
inline constexpr auto patchStateTargetTexts = enumTexts<PatchStateTarget>({
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
});
constexpr EnumTexts textsOf(PatchStateTarget)
{
    return {"PatchStateTarget", patchStateTargetTexts};
}

} // namespace vx::tarn::common
