#include "vxtl/exception.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/guarded.h"

#include <ostream>

namespace vx {
namespace {

struct Thrower {
    [[noreturn]] static void fail() { VX_THROW(BaseException, L"went wrong"); }
};

TEST(BaseException, reportsReasonAndPlaceInOneLine)
{
    EXPECT_THAT(support::thrown<BaseException>(&Thrower::fail).wideWhat(),
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
    EXPECT_STREQ(original.wideWhat(), L"report 1");
    Counting assigned(L"other ", nullptr, nullptr, 1);
    EXPECT_STREQ(assigned.what(), "other 1");
    assigned = original;
    EXPECT_STREQ(assigned.what(), "report 2");
}

TEST(BaseException, survivesAReportThatThrows)
{
    struct Unreportable : BaseException {
        using BaseException::BaseException;
        void report(std::wostream&) const override { throw 1; }
    };
    support::LogCapture log;
    const Unreportable unreportable(L"x", nullptr, nullptr, 1);
    EXPECT_STREQ(unreportable.what(), "");
    logging::LogStream(logging::Level::Error) << unreportable;
    EXPECT_TRUE(log.has(2, "Serious Error: Exception occurred during another exception tracing.")) << log.text();
}

TEST(BaseException, standsInTheLogInUtf8)
{
    const BaseException exception(L"stra\u00dfe \u6f22", L"f", L"file", 1);
    const std::string report = "Type: vx::BaseException, Reason: stra\xc3\x9f"
                               "e \xe6\xbc\xa2, Function: f, File: file, Line: 1\n";
    support::LogCapture log;
    logging::LogStream(logging::Level::Error) << exception;
    logging::LogStream(logging::Level::Error) << "Text: " << What(exception);
    guarded("Guarded: ", [&] { throw exception; });
    guarded([&] { throw exception; });
    EXPECT_EQ(log.text(),
        "Exception occurred. " + report + "Text: " + report + "Guarded: " + report + "Exception occurred. " + report);
}

} // namespace
} // namespace vx
