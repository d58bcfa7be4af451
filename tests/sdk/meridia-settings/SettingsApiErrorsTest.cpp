#include "fakemeridia.h"
#include "settings-api/exceptions.h"
#include "support/thrown.h"

#include <nlohmann/json.hpp>

using namespace vx;
using meridia::errorText;
using meridia::QrlMeridiaError_enum;
using meridia::SettingsApi;
using support::thrown;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

struct Operation {
    const wchar_t* name;
    std::function<void(SettingsApi&)> run;
};

const Operation operations[] = {
    {L"getBoolValue", [](auto& api) { api.getBoolValue(L"n"); }},
    {L"getInt32Value", [](auto& api) { api.getInt32Value(L"n"); }},
    {L"getInt64Value", [](auto& api) { api.getInt64Value(L"n"); }},
    {L"getDoubleValue", [](auto& api) { api.getDoubleValue(L"n"); }},
    {L"getStringValue", [](auto& api) { api.getStringValue(L"n"); }},
    {L"getJsonValue", [](auto& api) { api.getJsonValue(L"n"); }},
    {L"setBoolValue", [](auto& api) { api.setBoolValue(L"n", true); }},
    {L"setInt32Value", [](auto& api) { api.setInt32Value(L"n", 1); }},
    {L"setInt64Value", [](auto& api) { api.setInt64Value(L"n", 1); }},
    {L"setDoubleValue", [](auto& api) { api.setDoubleValue(L"n", 1); }},
    {L"setStringValue", [](auto& api) { api.setStringValue(L"n", L"text"); }},
    {L"setJsonValue", [](auto& api) { api.setJsonValue(L"n", 1); }},
};

/// What a code means, and at which of the repeated calls of a write that is found out.
struct Meaning {
    std::wstring type;
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

struct SettingsApiErrorsTest : testing::Test {
    FakeMeridia fake;
    std::unique_ptr<SettingsApi> api = fake.open();

    void expectMeaning(const BaseException& exception, const std::wstring& operation, int code)
    {
        const std::wstring report = exception.wideWhat();
        EXPECT_THAT(report, StartsWith(L"Type: " + meaningOf(code).type + L", "));
        EXPECT_THAT(report, HasSubstr(L"Function: vx::meridia::SettingsApi::" + operation + L","));
        EXPECT_THAT(report, HasSubstr(L", Setting: n"));
        if (const auto* other = dynamic_cast<const QrlMeridiaException*>(&exception)) {
            EXPECT_EQ(code, static_cast<int>(other->code()));
            EXPECT_EQ(errorText(other->code()) + std::wstring(L", Setting: n"), other->reason());
        }
        EXPECT_EQ(operation.starts_with(L"get") ? 1u : meaningOf(code).callsOfWrite, fake.calls.size());
        EXPECT_TRUE(fake.lentTexts.empty());
    }
};

} // namespace

TEST_F(SettingsApiErrorsTest, readsCallTheStoreOnceAndWritesAgainForEachComparison)
{
    for (const auto& [name, run] : operations)
        for (int code = 1; code <= 25; ++code) {
            SCOPED_TRACE(testing::Message() << name << " with " << code);
            fake.answer({code});
            fake.calls.clear();
            try {
                run(*api);
                ADD_FAILURE() << "no failure";
            } catch (const BaseException& exception) {
                expectMeaning(exception, name, code);
            }
        }
}

TEST_F(SettingsApiErrorsTest, eachCallOfAWriteIsMetByItsOwnComparison)
{
    const auto write = [&] { api->setBoolValue(L"n", true); };
    fake.answer({1, 0});
    write();
    EXPECT_EQ(7u, fake.calls.size());
    fake.answer({11, 2, 2});
    EXPECT_THROW(write(), settings::InvalidValueException);
    fake.answer({10, 10, 11, 5, 5});
    EXPECT_THROW(write(), settings::AccessDeniedException);
    fake.answer({1, 1, 1, 1, 1, 1, 14, 0});
    const auto failure = thrown<QrlMeridiaException>(write);
    EXPECT_EQ(QrlMeridiaError_enum::SchemaViolation, failure.code());
    EXPECT_EQ(L"Operation completed successfully, Setting: n", failure.reason());
}

TEST(QrlMeridiaErrorTest, numbersOutsideTheTableAreUnknown)
{
    for (const int code : {-1, 4, 6, 7, 8, 9, 15, 16, 17, 18, 19, 21, 1000})
        EXPECT_STREQ(L"Unknown error code", errorText(static_cast<QrlMeridiaError_enum>(code))) << code;
    for (const int code : {0, 1, 2, 3, 5, 10, 11, 12, 13, 14, 20})
        EXPECT_STRNE(L"Unknown error code", errorText(static_cast<QrlMeridiaError_enum>(code))) << code;
    EXPECT_STREQ(L"Type: QrlMeridiaException, Reason: UAC was cancelled by the user, Function: f, File: g, Line: 3, "
                 L"Error Code : 20",
        QrlMeridiaException(static_cast<QrlMeridiaError_enum>(20), std::wstring(), L"f", L"g", 3).wideWhat());
}
