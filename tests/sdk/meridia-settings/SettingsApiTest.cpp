#include "fakemeridia.h"
#include "support/logcapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>

using namespace vx;
using meridia::SettingsApi;
using nlohmann::json;
using testing::ElementsAre;

namespace {

class SettingsApiTest : public testing::Test {
protected:
    FakeMeridia m_fake;
};

} // namespace

TEST_F(SettingsApiTest, opensTwoHandlesWithTheSameTexts)
{
    const SettingsApi api(L"safe", L"sid", L"client", m_fake.loader());
    EXPECT_THAT(m_fake.calls, ElementsAre(L"Open 0 safe sid client", L"Open 0 safe sid client"));
}

TEST_F(SettingsApiTest, libraryThatDoesNotLoadIsNamed)
{
    try {
        SettingsApi({}, {}, {}, [](auto&) { return delayload::LoadStatus::FunctionNotFound; });
        FAIL();
    } catch (const BaseException& exception) {
        EXPECT_EQ(L"Cannot load QRL Meridia library", exception.reason());
    }
}

TEST_F(SettingsApiTest, failedSecondOpenClosesTheFirstHandle)
{
    m_fake.answer({0, 3});
    try {
        m_fake.open();
        FAIL();
    } catch (const QrlMeridiaException& exception) {
        EXPECT_EQ(meridia::QrlMeridiaError_enum::ServerUnreachable, exception.code());
        EXPECT_EQ(L"Server is unreachable", exception.reason());
    }
    EXPECT_EQ(L"Close 1", m_fake.calls.back());
    EXPECT_EQ(3u, m_fake.calls.size());
}

TEST_F(SettingsApiTest, destructorClosesOnlySlotsWithoutAHandle)
{
    m_fake.open().reset();
    EXPECT_THAT(m_fake.calls, ElementsAre());
    m_fake.lastHandle = UINT32_MAX; // the next handle is 0
    m_fake.open().reset();
    EXPECT_THAT(m_fake.calls, ElementsAre(L"Close 0"));
}

TEST_F(SettingsApiTest, readsAskTheFirstHandleWithNeutralDefaults)
{
    const auto api = m_fake.open();
    m_fake.number = 0x80; // true to a caller that looks at the whole byte
    EXPECT_TRUE(api->getBoolValue(L"n"));
    m_fake.number = INT32_MIN;
    EXPECT_EQ(INT32_MIN, api->getInt32Value(L"n"));
    m_fake.number = INT64_MIN;
    EXPECT_EQ(INT64_MIN, api->getInt64Value(L"n"));
    m_fake.text = L" -2.5e3 and more";
    EXPECT_EQ(-2500, api->getDoubleValue(L"n"));
    EXPECT_EQ(m_fake.text, api->getStringValue(L"n"));
    m_fake.text = L"{\"a\":[1]}";
    EXPECT_EQ(json({{"a", {1}}}), api->getJsonValue(L"n"));
    EXPECT_THAT(m_fake.calls,
        ElementsAre(L"Get 1 n 0", L"Get 1 n 0", L"Get 1 n 0", L"GetString 1 n ", L"GetString 1 n ", L"GetObject 1 n"));
    EXPECT_TRUE(m_fake.lentTexts.empty());
}

TEST_F(SettingsApiTest, writesGoToTheFirstHandle)
{
    const auto api = m_fake.open();
    api->setBoolValue(L"n", true);
    api->setInt32Value(L"n", INT32_MIN);
    api->setInt64Value(L"n", INT64_MIN);
    api->setDoubleValue(L"n", 1.5);
    api->setStringValue(L"n", L"text");
    api->setJsonValue(L"n", {{"a", {1, 2}}});
    EXPECT_THAT(m_fake.calls, ElementsAre(L"Set 1 n 1", L"Set 1 n -2147483648", L"Set 1 n -9223372036854775808",
                                  L"SetString 1 n 1.500000", L"SetString 1 n text", L"SetObject 1 n {\"a\":[1,2]}"));
    api->setDoubleValue(L"n", std::numeric_limits<double>::max());
    EXPECT_EQ(std::wstring(L"SetString 1 n ").size() + 309 + 7, m_fake.calls.back().size());
}

TEST_F(SettingsApiTest, textThatIsNoDoubleFailsAsTheStandardConversionDoes)
{
    const auto api = m_fake.open();
    const auto failure = [&](const wchar_t* text) -> std::string {
        m_fake.text = text;
        try {
            api->getDoubleValue(L"n");
        } catch (const std::logic_error& error) {
            return (dynamic_cast<const std::out_of_range*>(&error) ? "range: " : "argument: ") +
                   std::string(error.what());
        }
        return "none";
    };
    EXPECT_EQ("argument: invalid stod argument", failure(L""));
    EXPECT_EQ("argument: invalid stod argument", failure(L"x1"));
    EXPECT_EQ("range: stod argument out of range", failure(L"1e999"));
    EXPECT_EQ("range: stod argument out of range", failure(L"-1e999"));
}

TEST_F(SettingsApiTest, textThatIsNoJsonFailsAsTheLibraryDoesAndIsGivenBack)
{
    const auto api = m_fake.open();
    m_fake.text = L"{";
    EXPECT_THROW(api->getJsonValue(L"n"), json::parse_error);
    EXPECT_TRUE(m_fake.lentTexts.empty());
}

TEST_F(SettingsApiTest, operationsTraceTheirArguments)
{
    const auto api = m_fake.open();
    const support::LogCapture log;
    api->setJsonValue(L"n", json::array());
    EXPECT_TRUE(log.has(5, "{ vx::meridia::SettingsApi::setJsonValue"));
    EXPECT_TRUE(log.has(5, "name: n, data.dump(): []"));
    api->setStringValue(L"n", L"v");
    EXPECT_TRUE(log.has(5, "name: n, value: v"));
    api->unsubscribeFromChanges(17);
    EXPECT_TRUE(log.has(5, "subscriptionId: 17"));
}
