#include "support/logcapture.h"
#include "vxtl/win32exception.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace vx
