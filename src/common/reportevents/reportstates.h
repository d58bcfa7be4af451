#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>

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

// A number that is in no table becomes JSON null.
nlohmann::json toJson(ReportEventType value);
nlohmann::json toJson(MachineStateTarget value);
nlohmann::json toJson(PatchStateTarget value);

// Null and a text that is in no table leave `target` as it is and give false; another value that is no string throws
// type error 302.
bool fromJson(const nlohmann::json& value, ReportEventType& target);
bool fromJson(const nlohmann::json& value, MachineStateTarget& target);
bool fromJson(const nlohmann::json& value, PatchStateTarget& target);

} // namespace vx::tarn::common
