#include "support/logcapture.h"
#include "vxtl/comerror.h"
#include "vxtl/win32exception.h"

#include <ostream>

namespace vx {
namespace {

struct Thrower {
    [[noreturn]] static void fail(const wchar_t* reason) { VX_THROW(BaseException, reason); }
};

BaseException caught(const wchar_t* reason)
{
    try {
        Thrower::fail(reason);
    } catch (const BaseException& e) {
        return e;
    }
}

TEST(BaseException, reportsReasonAndPlaceInOneLine)
{
    EXPECT_THAT(caught(L"went wrong").wideWhat(),
        testing::StartsWith(
            L"Type: vx::BaseException, Reason: went wrong, Function: "
            L"vx::`anonymous-namespace'::Thrower::fail, File: tests/sdk/vxtl/ExceptionTest.cpp, Line: "));
    const BaseException ofNulls(static_cast<const wchar_t*>(nullptr), nullptr, nullptr, 7);
    EXPECT_STREQ(ofNulls.what(), "Type: vx::BaseException, Reason: , Function: , File: , Line: 7");
}

TEST(BaseException, keepsItsReportWhichCopiesBuildAnew)
{
    struct Counting : BaseException {
        using BaseException::BaseException;
        void report(std::wostream& stream) const override { stream << reason() << ++reports; }
        mutable int reports = 0;
    };
    const Counting original(L"report ", nullptr, nullptr, 1);
    EXPECT_STREQ(original.what(), "report 1");
    EXPECT_STREQ(original.what(), "report 1");
    EXPECT_STREQ(original.wideWhat(), L"report 1");
    const Counting copy(original);
    EXPECT_STREQ(copy.what(), "report 2");
    Counting assigned(L"other ", nullptr, nullptr, 1);
    EXPECT_STREQ(assigned.what(), "other 1");
    assigned = original;
    EXPECT_STREQ(assigned.what(), "report 2");
}

TEST(BaseException, logsItsReportAndSurvivesOneThatThrows)
{
    struct Unreportable : BaseException {
        using BaseException::BaseException;
        void report(std::wostream&) const override { throw 1; }
    };
    support::LogCapture log;
    const Unreportable unreportable(L"x", nullptr, nullptr, 1);
    EXPECT_STREQ(unreportable.what(), "");
    logging::LogStream(logging::Level::Error) << unreportable;
    logging::LogStream(logging::Level::Error) << caught(L"went wrong");
    logging::LogStream(logging::Level::Error) << std::runtime_error("plain");
    for (const char* line : {"Exception occurred. Type: vx::BaseException, Reason: went wrong",
             "Exception occurred. plain", "Serious Error: Exception occurred during another exception tracing."})
        EXPECT_TRUE(log.has(2, line)) << log.text();
}

TEST(Win32Exception, neverReplacesAReason)
{
    EXPECT_STREQ(Win32Exception(5, L"own", L"f", L"file", 9).what(),
        "Type: Win32Exception, Reason: own, Function: f, File: file, Line: 9, Error Code : 5");
}

TEST(ComErrorMessage, isMadeOfTheNumberWhereTheSystemHasNone)
{
    struct {
        std::uint32_t result;
        const wchar_t* message;
    } const rows[] = {
        {0x80040205, L"IDispatch error #5"},
        {0x80040200, L"Unknown error 0x80040200"},
        {0x800401FF, L"Unknown error 0x800401FF"},
        {0x80040201, L"IDispatch error #1"},
        {0x8004FFFF, L"IDispatch error #65023"},
        {0x80050000, L"Unknown error 0x80050000"},
        {0, L"Unknown error 0x0"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(details::unknownComErrorMessage(static_cast<std::int32_t>(row.result)), row.message) << row.result;
}

} // namespace
} // namespace vx
