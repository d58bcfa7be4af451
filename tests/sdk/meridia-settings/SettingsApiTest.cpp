#include "fakemeridia.h"
#include "support/logcapture.h"
#include "support/thrown.h"

#include <limits>
#include <nlohmann/json.hpp>

using namespace vx;
using meridia::SettingsApi;
using nlohmann::json;
using support::thrown;
using testing::ElementsAre;

namespace {

struct SettingsApiTest : testing::Test {
    FakeMeridia fake;
    std::unique_ptr<SettingsApi> api = fake.open();
};

} // namespace

TEST_F(SettingsApiTest, opensTwoHandlesAndClosesOnlySlotsWithoutOne)
{
    EXPECT_THAT(fake.opening, ElementsAre(L"Open 0 safe sid client", L"Open 0 safe sid client"));
    api.reset();
    EXPECT_THAT(fake.calls, ElementsAre());
    fake.lastHandle = UINT32_MAX; // the next handle is 0
    fake.open().reset();
    EXPECT_THAT(fake.calls, ElementsAre(L"Close 0"));
}

TEST_F(SettingsApiTest, libraryThatDoesNotLoadIsNamed)
{
    const auto loadNothing = [](auto&) { return delayload::LoadStatus::FunctionNotFound; };
    const auto failure = thrown<BaseException>([&] { SettingsApi({}, {}, {}, loadNothing); });
    EXPECT_EQ(L"Cannot load QRL Meridia library", failure.reason());
}

TEST_F(SettingsApiTest, failedSecondOpenClosesTheFirstHandle)
{
    fake.lastHandle = 0;
    fake.answer({0, 3});
    const auto failure = thrown<QrlMeridiaException>([&] { fake.open(); });
    EXPECT_EQ(meridia::QrlMeridiaError_enum::ServerUnreachable, failure.code());
    EXPECT_EQ(L"Server is unreachable", failure.reason());
    EXPECT_EQ(L"Close 1", fake.calls.back());
    EXPECT_EQ(3u, fake.calls.size());
}

TEST_F(SettingsApiTest, readsAskTheFirstHandleWithNeutralDefaults)
{
    fake.number = 0x80; // true to a caller that looks at the whole byte
    EXPECT_TRUE(api->getBoolValue(L"n"));
    fake.number = INT32_MIN;
    EXPECT_EQ(INT32_MIN, api->getInt32Value(L"n"));
    fake.number = INT64_MIN;
    EXPECT_EQ(INT64_MIN, api->getInt64Value(L"n"));
    fake.text = L" -2.5e3 and more";
    EXPECT_EQ(-2500, api->getDoubleValue(L"n"));
    EXPECT_EQ(fake.text, api->getStringValue(L"n"));
    fake.text = L"{\"a\":[1]}";
    EXPECT_EQ(json({{"a", {1}}}), api->getJsonValue(L"n"));
    EXPECT_THAT(fake.calls,
        ElementsAre(L"Get 1 n 0", L"Get 1 n 0", L"Get 1 n 0", L"GetString 1 n ", L"GetString 1 n ", L"GetObject 1 n"));
    EXPECT_TRUE(fake.lentTexts.empty());
}

TEST_F(SettingsApiTest, writesGoToTheFirstHandleAndTraceTheirArguments)
{
    const support::LogCapture log;
    api->setBoolValue(L"n", true);
    api->setInt32Value(L"n", INT32_MIN);
    api->setInt64Value(L"n", INT64_MIN);
    api->setDoubleValue(L"n", 1.5);
    api->setStringValue(L"n", L"text");
    api->setJsonValue(L"n", {{"a", {1, 2}}});
    EXPECT_THAT(fake.calls, ElementsAre(L"Set 1 n 1", L"Set 1 n -2147483648", L"Set 1 n -9223372036854775808",
                                L"SetString 1 n 1.500000", L"SetString 1 n text", L"SetObject 1 n {\"a\":[1,2]}"));
    EXPECT_TRUE(log.has(5, "{ vx::meridia::SettingsApi::setJsonValue"));
    EXPECT_TRUE(log.has(5, "name: n, data.dump(): {\"a\":[1,2]}"));
    EXPECT_TRUE(log.has(5, "name: n, value: text"));
    api->setDoubleValue(L"n", std::numeric_limits<double>::max());
    EXPECT_EQ(std::wstring(L"SetString 1 n ").size() + 309 + 7, fake.calls.back().size());
}

TEST_F(SettingsApiTest, textOfAnotherKindFailsAsTheLibrariesDoAndIsGivenBack)
{
    for (const wchar_t* text : {L"", L"x1"}) {
        fake.text = text;
        const auto failure = thrown<std::invalid_argument>([&] { api->getDoubleValue(L"n"); });
        EXPECT_STREQ("invalid stod argument", failure.what());
    }
    for (const wchar_t* text : {L"1e999", L"-1e999"}) {
        fake.text = text;
        const auto failure = thrown<std::out_of_range>([&] { api->getDoubleValue(L"n"); });
        EXPECT_STREQ("stod argument out of range", failure.what());
    }
    fake.text = L"{";
    EXPECT_THROW(api->getJsonValue(L"n"), json::parse_error);
    EXPECT_TRUE(fake.lentTexts.empty());
}
