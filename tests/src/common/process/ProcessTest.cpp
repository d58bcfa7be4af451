#include "common/process/process.h"
#include "support/logcapture.h"
#include "vxtl-process/process/credentials.h"
#include "vxtl-process/process/redirect.h"
#include "vxtl/win32exception.h"

using namespace vx;
using tarn::common::Process;

// A program that every Windows has.
const std::wstring shell = L"C:\\windows\\system32\\cmd.exe";

TEST(CommonProcess, holdsTheChildOfTheLastStartThatWorked)
{
    Process process;
    support::LogCapture log(6);
    const auto failsToStart = [&] { return !process.start(L"nosuchprogram.exe", 0, process::Redirect::None, nullptr); };
    EXPECT_TRUE(failsToStart());
    EXPECT_FALSE(process.start(L"nosuchprogram.exe", L"", process::Credentials()));
    EXPECT_EQ(log.count("Failed to start process. Exception caught: Type: "), 2u) << log.text();
    EXPECT_FALSE(process.start(shell, L"/c exit 0", {L".", L"no such user", L""}));
    EXPECT_EQ(log.count(".\\no such user:<no password>'"), 1u) << log.text();
    EXPECT_FALSE(process.getHandle());
    EXPECT_THROW(process.wait(), Win32Exception);
    EXPECT_THROW(process.getReturnCode(), Win32Exception);
    ASSERT_TRUE(process.start(shell + L" /c exit 7", 0, process::Redirect::None, nullptr));
    const SharedHandle first = process.getHandle();
    process.wait();
    EXPECT_TRUE(failsToStart());
    EXPECT_EQ(process.getReturnCode(), 7u);
    ASSERT_TRUE(process.start(shell, L"/c exit 8", process::Credentials()));
    process.wait();
    EXPECT_EQ(process.getReturnCode(), 8u);
    EXPECT_NE(process.getHandle(), first);
}
