#include "fakemeridia.h"

#include <nlohmann/json.hpp>

using namespace vx;
using nlohmann::json;
using support::thrown;
using testing::ElementsAre;

using SettingsApiTest = MeridiaTest;

TEST_F(SettingsApiTest, opensTwoHandlesAndClosesOnlySlotsWithoutOne)
{
    api.reset();
    EXPECT_THAT(calls, ElementsAre());
    lastHandle = UINT32_MAX; // the next handle is 0
    open();
    api.reset();
    EXPECT_THAT(calls, ElementsAre(L"Open 0 safe sid client", L"Open 0 safe sid client", L"Close 0"));
}

TEST_F(SettingsApiTest, failedSecondOpenClosesTheFirstHandle)
{
    answer({0, 3});
    EXPECT_EQ(Failure(3, L"Server is unreachable"), failureOf([&] { open(); }));
    EXPECT_EQ(L"Close 3", calls.back());
    EXPECT_EQ(3u, calls.size());
}

TEST_F(SettingsApiTest, libraryThatDoesNotLoadIsNamed)
{
    const auto loadNothing = [](auto&) { return delayload::LoadStatus::FunctionNotFound; };
    const auto failure = thrown<BaseException>([&] { meridia::SettingsApi({}, {}, {}, loadNothing); });
    EXPECT_EQ(L"Cannot load QRL Meridia library", failure.reason());
}

TEST_F(SettingsApiTest, readsGiveValuesAsTheyAreAndTextsBack)
{
    number = 0x80; // true to a caller that looks at the whole byte
    EXPECT_TRUE(api->getBoolValue(L"n"));
    number = INT32_MIN;
    EXPECT_EQ(INT32_MIN, api->getInt32Value(L"n"));
    number = INT64_MIN;
    EXPECT_EQ(INT64_MIN, api->getInt64Value(L"n"));
    text = L" -2.5e3 and more";
    EXPECT_EQ(-2500, api->getDoubleValue(L"n"));
    EXPECT_EQ(text, api->getStringValue(L"n"));
    EXPECT_THROW(api->getJsonValue(L"n"), json::parse_error);
    text = L"{\"a\":[1]}";
    EXPECT_EQ(json({{"a", {1}}}), api->getJsonValue(L"n"));
    const auto readDouble = [&] { api->getDoubleValue(L"n"); };
    EXPECT_STREQ("invalid stod argument", thrown<std::invalid_argument>(readDouble).what());
    text = L"-1e999";
    EXPECT_STREQ("stod argument out of range", thrown<std::out_of_range>(readDouble).what());
    EXPECT_TRUE(lentTexts.empty());
}
