#include "common/settings/settingsenumerations.h"

#include <gmock/gmock.h>
#include <stdexcept>

using namespace vx::tarn;

TEST(SettingsEnumerationsTest, textsHaveTheirNumbers)
{
    EXPECT_EQ(ModeItem(3), toModeItem(L"install_critical_and_important"));
    EXPECT_EQ(FrequencyItem(7), toFrequencyItem(L"every_sunday"));
    EXPECT_EQ(ValueItem(13), toValueItem(L"installation_hung_up"));
    EXPECT_EQ(InstallationResultItem(9), toInstallationResultItem(L"installation_hung_up"));
    EXPECT_EQ(InstallationResultItem(12), toInstallationResultItem(L"excluded"));
    EXPECT_EQ(L"reboot_needed", toText(ResultItem::RebootNeeded));
    for (int number = 0; number <= 14; ++number)
        EXPECT_EQ(number, static_cast<int>(toValueItem(toText(static_cast<ValueItem>(number)))));
}

TEST(SettingsEnumerationsTest, anythingElseIsInvalid)
{
    const auto invalid = [](const std::string& type) {
        return testing::ThrowsMessage<std::invalid_argument>(testing::StrEq("Invalid value for " + type));
    };
    EXPECT_THAT([] { toModeItem(L"Disable"); }, invalid("ModeItem"));
    EXPECT_THAT([] { toFrequencyItem({}); }, invalid("FrequencyItem"));
    EXPECT_THAT([] { toText(static_cast<ResultItem>(4)); }, invalid("ResultItem"));
    EXPECT_THAT([] { toText(static_cast<ValueItem>(-1)); }, invalid("ValueItem"));
}
