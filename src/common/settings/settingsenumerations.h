#pragma once

#include "vxtl/enumtext.h"

namespace vx::tarn {

// Enumerations that the store and the patch records hold as lower-case text.

/// What the automatic installation installs.
enum class ModeItem : std::int32_t {
    Disable = 0,
    InstallAll = 1,
    InstallCritical = 2,
    InstallCriticalAndImportant = 3,
};
inline constexpr auto modeTexts = enumTexts<ModeItem>({
    {ModeItem::Disable, "disable"},
    {ModeItem::InstallAll, "install_all"},
    {ModeItem::InstallCritical, "install_critical"},
    {ModeItem::InstallCriticalAndImportant, "install_critical_and_important"},
});
constexpr EnumTexts textsOf(ModeItem)
{
    return {"ModeItem", modeTexts};
}

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
inline constexpr auto frequencyTexts = enumTexts<FrequencyItem>({
    {FrequencyItem::EveryDay, "every_day"},
    {FrequencyItem::EveryMonday, "every_monday"},
    {FrequencyItem::EveryTuesday, "every_tuesday"},
    {FrequencyItem::EveryWednesday, "every_wednesday"},
    {FrequencyItem::EveryThursday, "every_thursday"},
    {FrequencyItem::EveryFriday, "every_friday"},
    {FrequencyItem::EverySaturday, "every_saturday"},
    {FrequencyItem::EverySunday, "every_sunday"},
});
constexpr EnumTexts textsOf(FrequencyItem)
{
    return {"FrequencyItem", frequencyTexts};
}

/// Who sees flyers about a reboot.
enum class ShowFlyerPolicyItem : std::int32_t {
    AllUsers = 0,
    AdminUsers = 1,
    Nobody = 2,
};
inline constexpr auto showFlyerPolicyTexts = enumTexts<ShowFlyerPolicyItem>({
    {ShowFlyerPolicyItem::AllUsers, "all_users"},
    {ShowFlyerPolicyItem::AdminUsers, "admin_users"},
    {ShowFlyerPolicyItem::Nobody, "nobody"},
});
constexpr EnumTexts textsOf(ShowFlyerPolicyItem)
{
    return {"ShowFlyerPolicyItem", showFlyerPolicyTexts};
}

/// Where the proxy of downloads comes from.
enum class UseHttpProxyItem : std::int32_t {
    No = 0,
    FromProductConfiguration = 1,
    UserDefined = 2,
};
inline constexpr auto useHttpProxyTexts = enumTexts<UseHttpProxyItem>({
    {UseHttpProxyItem::No, "no"},
    {UseHttpProxyItem::FromProductConfiguration, "from_product_configuration"},
    {UseHttpProxyItem::UserDefined, "user_defined"},
});
constexpr EnumTexts textsOf(UseHttpProxyItem)
{
    return {"UseHttpProxyItem", useHttpProxyTexts};
}

/// How a remote installation ended.
enum class ResultItem : std::int32_t {
    Success = 0,
    Failed = 1,
    PartialFailed = 2,
    RebootNeeded = 3,
};
inline constexpr auto resultTexts = enumTexts<ResultItem>({
    {ResultItem::Success, "success"},
    {ResultItem::Failed, "failed"},
    {ResultItem::PartialFailed, "partial_failed"},
    {ResultItem::RebootNeeded, "reboot_needed"},
});
constexpr EnumTexts textsOf(ResultItem)
{
    return {"ResultItem", resultTexts};
}

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
inline constexpr auto valueTexts = enumTexts<ValueItem>({
    {ValueItem::InstallationRequested, "installation_requested"},
    {ValueItem::InstallationFailed, "installation_failed"},
    {ValueItem::InstallationExecuting, "installation_executing"},
    {ValueItem::InstallationCompletedPendingReboot, "installation_completed_pending_reboot"},
    {ValueItem::InstallationCanceled, "installation_canceled"},
    {ValueItem::FileDownloading, "file_downloading"},
    {ValueItem::FileDownloadFailed, "file_download_failed"},
    {ValueItem::FileDownloadCompleted, "file_download_completed"},
    {ValueItem::FileManualDownloadRequired, "file_manual_download_required"},
    {ValueItem::InstallationCompleted, "installation_completed"},
    {ValueItem::InstallationWillContinueAfterReboot, "installation_will_continue_after_reboot"},
    {ValueItem::FileValidationFailed, "file_validation_failed"},
    {ValueItem::FileIsMissing, "file_is_missing"},
    {ValueItem::InstallationHungUp, "installation_hung_up"},
    {ValueItem::InstallationExcluded, "installation_excluded"},
});
constexpr EnumTexts textsOf(ValueItem)
{
    return {"ValueItem", valueTexts};
}

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
inline constexpr auto installationResultTexts = enumTexts<InstallationResultItem>({
    {InstallationResultItem::InstallationNotStarted, "installation_not_started"},
    {InstallationResultItem::DownloadSuccess, "download_success"},
    {InstallationResultItem::DownloadCurlError, "download_curl_error"},
    {InstallationResultItem::DownloadWinError, "download_win_error"},
    {InstallationResultItem::DownloadComError, "download_com_error"},
    {InstallationResultItem::DownloadError, "download_error"},
    {InstallationResultItem::InstallationSuccess, "installation_success"},
    {InstallationResultItem::InstallationError, "installation_error"},
    {InstallationResultItem::InstallationUnknown, "installation_unknown"},
    {InstallationResultItem::InstallationHungUp, "installation_hung_up"},
    {InstallationResultItem::SignatureVerificationError, "signature_verification_error"},
    {InstallationResultItem::NoSignature, "no_signature"},
    {InstallationResultItem::Excluded, "excluded"},
});
constexpr EnumTexts textsOf(InstallationResultItem)
{
    return {"InstallationResultItem", installationResultTexts};
}

} // namespace vx::tarn
