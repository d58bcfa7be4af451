#include "common/settingsenumerations.h"

#include <gtest/gtest.h>
#include <stdexcept>

using namespace vx::tarn;

namespace {

template <typename Call>
std::string failureOf(Call call)
{
    try {
        call();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "no failure";
}

struct NumberCase {
    const wchar_t* text;
    int number;
    int (*convert)(const std::wstring& text);
};

template <auto Convert>
int numberOf(const std::wstring& text)
{
    return static_cast<int>(Convert(text));
}

} // namespace

TEST(SettingsEnumerationsTest, textsHaveTheirNumbers)
{
    static constexpr NumberCase cases[] = {
        {L"disable", 0, numberOf<toModeItem>},
        {L"install_critical_and_important", 3, numberOf<toModeItem>},
        {L"every_day", 0, numberOf<toFrequencyItem>},
        {L"every_monday", 1, numberOf<toFrequencyItem>},
        {L"every_sunday", 7, numberOf<toFrequencyItem>},
        {L"nobody", 2, numberOf<toShowFlyerPolicyItem>},
        {L"user_defined", 2, numberOf<toUseHttpProxyItem>},
        {L"installation_hung_up", 13, numberOf<toValueItem>},
        {L"installation_excluded", 14, numberOf<toValueItem>},
        {L"installation_hung_up", 9, numberOf<toInstallationResultItem>},
        {L"excluded", 12, numberOf<toInstallationResultItem>},
    };
    for (const NumberCase& row : cases)
        EXPECT_EQ(row.number, row.convert(row.text)) << std::string(row.text, row.text + wcslen(row.text));
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
    EXPECT_EQ("Invalid value for ModeItem", failureOf([] { toModeItem(L"Disable"); }));
    EXPECT_EQ("Invalid value for FrequencyItem", failureOf([] { toFrequencyItem({}); }));
    EXPECT_EQ("Invalid value for ShowFlyerPolicyItem", failureOf([] { toShowFlyerPolicyItem(L" nobody"); }));
    EXPECT_EQ("Invalid value for UseHttpProxyItem", failureOf([] { toUseHttpProxyItem(L"yes"); }));
    EXPECT_EQ("Invalid value for ResultItem", failureOf([] { toText(static_cast<ResultItem>(4)); }));
    EXPECT_EQ("Invalid value for ValueItem", failureOf([] { toValueItem(L"excluded"); }));
    EXPECT_EQ("Invalid value for ValueItem", failureOf([] { toText(static_cast<ValueItem>(-1)); }));
    EXPECT_EQ("Invalid value for InstallationResultItem", failureOf([] { toInstallationResultItem(L"success"); }));
}
