#include "common/settings/settingsenumerations.h"

#include <gmock/gmock.h>

using namespace vx::tarn;
using vx::fromText;
using vx::toText;

TEST(SettingsEnumerationsTest, textsHaveTheirNumbers)
{
    EXPECT_EQ(ModeItem(3), fromText<ModeItem>(std::wstring(L"install_critical_and_important")));
    EXPECT_EQ(FrequencyItem(7), fromText<FrequencyItem>("every_sunday"));
    EXPECT_EQ(InstallationResultItem(9), fromText<InstallationResultItem>("installation_hung_up"));
    EXPECT_EQ(InstallationResultItem(12), fromText<InstallationResultItem>("excluded"));
    EXPECT_EQ("reboot_needed", toText(ResultItem(3)));
    for (int number = 0; number <= 14; ++number)
        EXPECT_EQ(ValueItem(number), fromText<ValueItem>(toText(ValueItem(number))));
}

TEST(SettingsEnumerationsTest, anythingElseIsInvalid)
{
    const auto invalid = [](const std::string& type) {
        return testing::ThrowsMessage<std::invalid_argument>("Invalid value for " + type);
    };
    EXPECT_THAT([] { fromText<ModeItem>(L"Disable"); }, invalid("ModeItem"));
    EXPECT_THAT([] { fromText<FrequencyItem>("every_day "); }, invalid("FrequencyItem"));
    EXPECT_THAT([] { toText(ResultItem(4)); }, invalid("ResultItem"));
    EXPECT_FALSE(vx::findText<ValueItem>("installation"));
}
