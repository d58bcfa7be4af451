#include "support/logcapture.h"
#include "vxtl/win32exception.h"

#include <gtest/gtest.h>

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
    const std::wstring report = caught(L"went wrong").wideWhat();
    EXPECT_EQ(report.find(L"Type: vx::BaseException, Reason: went wrong, Function: "
                          L"vx::`anonymous-namespace'::Thrower::fail, File: tests/sdk/vxtl/ExceptionTest.cpp, Line: "),
        0u)
        << std::string(report.begin(), report.end());
}

TEST(BaseException, takesNullTextsForEmptyOnes)
{
    const BaseException e(static_cast<const wchar_t*>(nullptr), nullptr, nullptr, 7);
    EXPECT_STREQ(e.what(), "Type: vx::BaseException, Reason: , Function: , File: , Line: 7");
}

TEST(BaseException, logsItsReportAndPlainExceptionsTheirText)
{
    support::LogCapture log;
    logging::LogStream(logging::Level::Error) << caught(L"went wrong");
    logging::LogStream(logging::Level::Error) << std::runtime_error("plain");
    EXPECT_TRUE(log.has(2, "Exception occurred. Type: vx::BaseException, Reason: went wrong")) << log.text();
    EXPECT_TRUE(log.has(2, "Exception occurred. plain")) << log.text();
}

struct Unreportable : BaseException {
    using BaseException::BaseException;
    void report(std::wostream&) const override { throw 1; }
};

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

TEST(BaseException, survivesAReportThatThrows)
{
    support::LogCapture log;
    const Unreportable unreportable(L"x", nullptr, nullptr, 1);
    EXPECT_STREQ(unreportable.what(), "");
    logging::LogStream(logging::Level::Error) << unreportable;
    EXPECT_TRUE(log.has(2, "Serious Error: Exception occurred during another exception tracing.")) << log.text();
}

TEST(Win32Exception, neverReplacesAReason)
{
    EXPECT_STREQ(Win32Exception(5, L"own", L"f", L"file", 9).what(),
        "Type: Win32Exception, Reason: own, Function: f, File: file, Line: 9, Error Code : 5");
}

} // namespace
} // namespace vx
