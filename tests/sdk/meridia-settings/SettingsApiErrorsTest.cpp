#include "fakemeridia.h"
#include "settings-api/exceptions.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace vx;
using meridia::errorText;
using meridia::QrlMeridiaError_enum;
using meridia::SettingsApi;

namespace {

struct Operation {
    const wchar_t* name;
    std::function<void(SettingsApi&)> run;
};

const Operation reads[] = {
    {L"getBoolValue", [](auto& api) { api.getBoolValue(L"n"); }},
    {L"getInt32Value", [](auto& api) { api.getInt32Value(L"n"); }},
    {L"getInt64Value", [](auto& api) { api.getInt64Value(L"n"); }},
    {L"getDoubleValue", [](auto& api) { api.getDoubleValue(L"n"); }},
    {L"getStringValue", [](auto& api) { api.getStringValue(L"n"); }},
    {L"getJsonValue", [](auto& api) { api.getJsonValue(L"n"); }},
};
const Operation writes[] = {
    {L"setBoolValue", [](auto& api) { api.setBoolValue(L"n", true); }},
    {L"setInt32Value", [](auto& api) { api.setInt32Value(L"n", 1); }},
    {L"setInt64Value", [](auto& api) { api.setInt64Value(L"n", 1); }},
    {L"setDoubleValue", [](auto& api) { api.setDoubleValue(L"n", 1); }},
    {L"setStringValue", [](auto& api) { api.setStringValue(L"n", L"text"); }},
    {L"setJsonValue", [](auto& api) { api.setJsonValue(L"n", 1); }},
};

/// What a code means, and at which of the repeated calls of a write that is found out.
struct Meaning {
    const wchar_t* type;
    std::size_t callsOfWrite;
};

Meaning meaningOf(int code)
{
    switch (code) {
    case 11: return {L"vx::settings::InvalidTypeException", 2};
    case 2: return {L"vx::settings::InvalidValueException", 3};
    case 10: return {L"vx::settings::NotFoundException", 4};
    case 5: return {L"vx::settings::AccessDeniedException", 5};
    case 3: return {L"vx::settings::ServerUnreachableException", 6};
    default: return {L"QrlMeridiaException", 8};
    }
}

class SettingsApiErrorsTest : public testing::Test {
protected:
    void expectFailure(const Operation& operation, int code)
    {
        SCOPED_TRACE(testing::Message() << operation.name << " with " << code);
        m_fake.answer({code});
        m_fake.calls.clear();
        try {
            operation.run(*m_api);
            ADD_FAILURE() << "no failure";
        } catch (const BaseException& exception) {
            expectMeaning(exception, operation, code);
        }
        EXPECT_TRUE(m_fake.lentTexts.empty());
    }

    static void expectMeaning(const BaseException& exception, const Operation& operation, int code)
    {
        const std::wstring report = exception.wideWhat();
        EXPECT_TRUE(report.starts_with(std::wstring(L"Type: ") + meaningOf(code).type + L", ")) << exception.what();
        EXPECT_NE(std::wstring::npos,
            report.find(std::wstring(L"Function: vx::meridia::SettingsApi::") + operation.name + L","));
        EXPECT_NE(std::wstring::npos, report.find(L", Setting: n"));
        if (const auto* other = dynamic_cast<const QrlMeridiaException*>(&exception)) {
            EXPECT_EQ(code, static_cast<int>(other->code()));
            EXPECT_EQ(errorText(other->code()) + std::wstring(L", Setting: n"), other->reason());
        }
    }

    FakeMeridia m_fake;
    std::unique_ptr<SettingsApi> m_api = m_fake.open();
};

} // namespace

TEST_F(SettingsApiErrorsTest, readThrowsWhatTheCodeMeansAfterOneCall)
{
    for (const Operation& read : reads)
        for (int code = 1; code <= 25; ++code) {
            expectFailure(read, code);
            EXPECT_EQ(1u, m_fake.calls.size());
        }
}

TEST_F(SettingsApiErrorsTest, writeCallsTheStoreAgainForEachComparison)
{
    for (const Operation& write : writes)
        for (int code = 1; code <= 25; ++code) {
            expectFailure(write, code);
            EXPECT_EQ(meaningOf(code).callsOfWrite, m_fake.calls.size());
        }
}

TEST_F(SettingsApiErrorsTest, writeSucceedsWhenTheStoreRecoversMeanwhile)
{
    m_fake.answer({1, 0});
    m_api->setBoolValue(L"n", true);
    EXPECT_EQ(7u, m_fake.calls.size());
}

TEST_F(SettingsApiErrorsTest, textOfAFailedWriteIsThatOfTheLastCall)
{
    m_fake.answer({1, 1, 1, 1, 1, 1, 14, 0});
    try {
        m_api->setBoolValue(L"n", true);
        FAIL();
    } catch (const QrlMeridiaException& exception) {
        EXPECT_EQ(QrlMeridiaError_enum::SchemaViolation, exception.code());
        EXPECT_EQ(L"Operation completed successfully, Setting: n", exception.reason());
    }
}

TEST_F(SettingsApiErrorsTest, codeThatChangesBetweenTheCallsIsMetByItsOwnComparison)
{
    m_fake.answer({11, 2, 2});
    EXPECT_THROW(m_api->setBoolValue(L"n", true), settings::InvalidValueException);
    m_fake.answer({10, 10, 11, 5, 5});
    EXPECT_THROW(m_api->setBoolValue(L"n", true), settings::AccessDeniedException);
}
