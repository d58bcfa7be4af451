#pragma once

#include <cstdint>
#include <string>

namespace vx::tarn {

// Enumerations that the store and the patch records hold as lower-case text. The conversions match exactly,
// case included, and throw std::invalid_argument "Invalid value for " and the type's name on anything else.

/// What the automatic installation installs.
enum class ModeItem : std::int32_t {
    Disable = 0,
    InstallAll = 1,
    InstallCritical = 2,
    InstallCriticalAndImportant = 3,
};
ModeItem toModeItem(const std::wstring& text);

/// When the automatic installation runs.
enum class FrequencyItem : std::int32_t {
    EveryDay = 0,
    EveryMonday = 1,
    EveryTuesday = 2,
    EveryWednesday = 3,
    EveryThursday = 4,
    EveryFriday = 5,
    EverySaturday = 6,
    EverySunday = 7,
};
FrequencyItem toFrequencyItem(const std::wstring& text);

/// Who sees flyers about a reboot.
enum class ShowFlyerPolicyItem : std::int32_t {
    AllUsers = 0,
    AdminUsers = 1,
    Nobody = 2,
};
ShowFlyerPolicyItem toShowFlyerPolicyItem(const std::wstring& text);

/// Where the proxy of downloads comes from.
enum class UseHttpProxyItem : std::int32_t {
    No = 0,
    FromProductConfiguration = 1,
    UserDefined = 2,
};
UseHttpProxyItem toUseHttpProxyItem(const std::wstring& text);

/// How a remote installation ended.
enum class ResultItem : std::int32_t {
    Success = 0,
    Failed = 1,
    PartialFailed = 2,
    RebootNeeded = 3,
};
std::wstring toText(ResultItem item);

/// The state of a patch.
enum class ValueItem : std::int32_t {
    InstallationRequested = 0,
    InstallationFailed = 1,
    InstallationExecuting = 2,
    InstallationCompletedPendingReboot = 3,
    InstallationCanceled = 4,
    FileDownloading = 5,
    FileDownloadFailed = 6,
    FileDownloadCompleted = 7,
    FileManualDownloadRequired = 8,
    InstallationCompleted = 9,
    InstallationWillContinueAfterReboot = 10,
    FileValidationFailed = 11,
    FileIsMissing = 12,
    InstallationHungUp = 13,
    InstallationExcluded = 14,
};
ValueItem toValueItem(const std::wstring& text);
std::wstring toText(ValueItem item);

/// How the installation of a patch ended, as the agent logs it.
enum class InstallationResultItem : std::int32_t {
    InstallationNotStarted = 0,
    DownloadSuccess = 1,
    DownloadCurlError = 2,
    DownloadWinError = 3,
    DownloadComError = 4,
    DownloadError = 5,
    InstallationSuccess = 6,
    InstallationError = 7,
    InstallationUnknown = 8,
    InstallationHungUp = 9,
    SignatureVerificationError = 10,
    NoSignature = 11,
    Excluded = 12,
};
InstallationResultItem toInstallationResultItem(const std::wstring& text);

} // namespace vx::tarn
