#include "common/settingsenumerations.h"

#include <gmock/gmock.h>
#include <stdexcept>

using namespace vx::tarn;

namespace {

auto invalid(const std::string& message)
{
    return testing::ThrowsMessage<std::invalid_argument>(testing::StrEq("Invalid value for " + message));
}

} // namespace

TEST(SettingsEnumerationsTest, textsHaveTheirNumbers)
{
    EXPECT_EQ(ModeItem(0), toModeItem(L"disable"));
    EXPECT_EQ(ModeItem(3), toModeItem(L"install_critical_and_important"));
    EXPECT_EQ(FrequencyItem(0), toFrequencyItem(L"every_day"));
    EXPECT_EQ(FrequencyItem(1), toFrequencyItem(L"every_monday"));
    EXPECT_EQ(FrequencyItem(7), toFrequencyItem(L"every_sunday"));
    EXPECT_EQ(ShowFlyerPolicyItem(2), toShowFlyerPolicyItem(L"nobody"));
    EXPECT_EQ(UseHttpProxyItem(2), toUseHttpProxyItem(L"user_defined"));
    EXPECT_EQ(ValueItem(13), toValueItem(L"installation_hung_up"));
    EXPECT_EQ(ValueItem(14), toValueItem(L"installation_excluded"));
    EXPECT_EQ(InstallationResultItem(9), toInstallationResultItem(L"installation_hung_up"));
    EXPECT_EQ(InstallationResultItem(12), toInstallationResultItem(L"excluded"));
}

TEST(SettingsEnumerationsTest, patchStatesConvertBothWays)
{
    for (int number = 0; number <= 14; ++number)
        EXPECT_EQ(number, static_cast<int>(toValueItem(toText(static_cast<ValueItem>(number)))));
    EXPECT_EQ(L"reboot_needed", toText(ResultItem::RebootNeeded));
    EXPECT_EQ(L"partial_failed", toText(static_cast<ResultItem>(2)));
}

TEST(SettingsEnumerationsTest, anythingElseIsInvalid)
{
    EXPECT_THAT([] { toModeItem(L"Disable"); }, invalid("ModeItem"));
    EXPECT_THAT([] { toFrequencyItem({}); }, invalid("FrequencyItem"));
    EXPECT_THAT([] { toShowFlyerPolicyItem(L" nobody"); }, invalid("ShowFlyerPolicyItem"));
    EXPECT_THAT([] { toUseHttpProxyItem(L"yes"); }, invalid("UseHttpProxyItem"));
    EXPECT_THAT([] { toText(static_cast<ResultItem>(4)); }, invalid("ResultItem"));
    EXPECT_THAT([] { toValueItem(L"excluded"); }, invalid("ValueItem"));
    EXPECT_THAT([] { toText(static_cast<ValueItem>(-1)); }, invalid("ValueItem"));
    EXPECT_THAT([] { toInstallationResultItem(L"success"); }, invalid("InstallationResultItem"));
}
