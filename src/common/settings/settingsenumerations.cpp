#include "common/settings/settingsenumerations.h"

#include <map>
#include <span>
#include <stdexcept>
#include <string_view>

namespace vx::tarn {

namespace {

/// One row per enumerator, in the order of the numbers.
template <typename Item>
struct Row {
    Item item;
    std::wstring_view text;
};

template <typename Item>
class ItemsByText {
public:
    explicit ItemsByText(std::span<const Row<Item>> rows)
    {
        for (const Row<Item>& row : rows)
            m_items.emplace(row.text, row.item);
    }

    Item find(const std::wstring& text, const char* failure) const
    {
        const auto found = m_items.find(text);
        if (found == m_items.end())
            throw std::invalid_argument(failure);
        return found->second;
    }

private:
    std::map<std::wstring, Item> m_items;
};

template <typename Item>
class TextsByItem {
public:
    explicit TextsByItem(std::span<const Row<Item>> rows)
    {
        for (const Row<Item>& row : rows)
            m_texts.emplace(row.item, row.text);
    }

    const std::wstring& find(Item item, const char* failure) const
    {
        const auto found = m_texts.find(item);
        if (found == m_texts.end())
            throw std::invalid_argument(failure);
        return found->second;
    }

private:
    std::map<Item, std::wstring> m_texts;
};

constexpr Row<ModeItem> modeItems[] = {
    {ModeItem::Disable, L"disable"},
    {ModeItem::InstallAll, L"install_all"},
    {ModeItem::InstallCritical, L"install_critical"},
    {ModeItem::InstallCriticalAndImportant, L"install_critical_and_important"},
};

constexpr Row<FrequencyItem> frequencyItems[] = {
    {FrequencyItem::EveryDay, L"every_day"},
    {FrequencyItem::EveryMonday, L"every_monday"},
    {FrequencyItem::EveryTuesday, L"every_tuesday"},
    {FrequencyItem::EveryWednesday, L"every_wednesday"},
    {FrequencyItem::EveryThursday, L"every_thursday"},
    {FrequencyItem::EveryFriday, L"every_friday"},
    {FrequencyItem::EverySaturday, L"every_saturday"},
    {FrequencyItem::EverySunday, L"every_sunday"},
};

constexpr Row<ShowFlyerPolicyItem> showFlyerPolicyItems[] = {
    {ShowFlyerPolicyItem::AllUsers, L"all_users"},
    {ShowFlyerPolicyItem::AdminUsers, L"admin_users"},
    {ShowFlyerPolicyItem::Nobody, L"nobody"},
};

constexpr Row<UseHttpProxyItem> useHttpProxyItems[] = {
    {UseHttpProxyItem::No, L"no"},
    {UseHttpProxyItem::FromProductConfiguration, L"from_product_configuration"},
    {UseHttpProxyItem::UserDefined, L"user_defined"},
};

constexpr Row<ResultItem> resultItems[] = {
    {ResultItem::Success, L"success"},
    {ResultItem::Failed, L"failed"},
    {ResultItem::PartialFailed, L"partial_failed"},
    {ResultItem::RebootNeeded, L"reboot_needed"},
};

constexpr Row<ValueItem> valueItems[] = {
    {ValueItem::InstallationRequested, L"installation_requested"},
    {ValueItem::InstallationFailed, L"installation_failed"},
    {ValueItem::InstallationExecuting, L"installation_executing"},
    {ValueItem::InstallationCompletedPendingReboot, L"installation_completed_pending_reboot"},
    {ValueItem::InstallationCanceled, L"installation_canceled"},
    {ValueItem::FileDownloading, L"file_downloading"},
    {ValueItem::FileDownloadFailed, L"file_download_failed"},
    {ValueItem::FileDownloadCompleted, L"file_download_completed"},
    {ValueItem::FileManualDownloadRequired, L"file_manual_download_required"},
    {ValueItem::InstallationCompleted, L"installation_completed"},
    {ValueItem::InstallationWillContinueAfterReboot, L"installation_will_continue_after_reboot"},
    {ValueItem::FileValidationFailed, L"file_validation_failed"},
    {ValueItem::FileIsMissing, L"file_is_missing"},
    {ValueItem::InstallationHungUp, L"installation_hung_up"},
    {ValueItem::InstallationExcluded, L"installation_excluded"},
};

constexpr Row<InstallationResultItem> installationResultItems[] = {
    {InstallationResultItem::InstallationNotStarted, L"installation_not_started"},
    {InstallationResultItem::DownloadSuccess, L"download_success"},
    {InstallationResultItem::DownloadCurlError, L"download_curl_error"},
    {InstallationResultItem::DownloadWinError, L"download_win_error"},
    {InstallationResultItem::DownloadComError, L"download_com_error"},
    {InstallationResultItem::DownloadError, L"download_error"},
    {InstallationResultItem::InstallationSuccess, L"installation_success"},
    {InstallationResultItem::InstallationError, L"installation_error"},
    {InstallationResultItem::InstallationUnknown, L"installation_unknown"},
    {InstallationResultItem::InstallationHungUp, L"installation_hung_up"},
    {InstallationResultItem::SignatureVerificationError, L"signature_verification_error"},
    {InstallationResultItem::NoSignature, L"no_signature"},
    {InstallationResultItem::Excluded, L"excluded"},
};

} // namespace

ModeItem toModeItem(const std::wstring& text)
{
    static const ItemsByText<ModeItem> items(modeItems);
    return items.find(text, "Invalid value for ModeItem");
}

FrequencyItem toFrequencyItem(const std::wstring& text)
{
    static const ItemsByText<FrequencyItem> items(frequencyItems);
    return items.find(text, "Invalid value for FrequencyItem");
}

ShowFlyerPolicyItem toShowFlyerPolicyItem(const std::wstring& text)
{
    static const ItemsByText<ShowFlyerPolicyItem> items(showFlyerPolicyItems);
    return items.find(text, "Invalid value for ShowFlyerPolicyItem");
}

UseHttpProxyItem toUseHttpProxyItem(const std::wstring& text)
{
    static const ItemsByText<UseHttpProxyItem> items(useHttpProxyItems);
    return items.find(text, "Invalid value for UseHttpProxyItem");
}

std::wstring toText(ResultItem item)
{
    static const TextsByItem<ResultItem> texts(resultItems);
    return texts.find(item, "Invalid value for ResultItem");
}

ValueItem toValueItem(const std::wstring& text)
{
    static const ItemsByText<ValueItem> items(valueItems);
    return items.find(text, "Invalid value for ValueItem");
}

std::wstring toText(ValueItem item)
{
    static const TextsByItem<ValueItem> texts(valueItems);
    return texts.find(item, "Invalid value for ValueItem");
}

InstallationResultItem toInstallationResultItem(const std::wstring& text)
{
    static const ItemsByText<InstallationResultItem> items(installationResultItems);
    return items.find(text, "Invalid value for InstallationResultItem");
}

} // namespace vx::tarn
