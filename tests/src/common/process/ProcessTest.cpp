#include "common/process.h"
#include "support/logcapture.h"
#include "vxtl/process/credentials.h"
#include "vxtl/process/redirect.h"
#include "vxtl/win32exception.h"

using namespace vx;
using tarn::common::Process;

namespace {

const std::wstring none;
// A program that every Windows has.
const std::wstring shell = L"C:\\windows\\system32\\cmd.exe";

} // namespace

TEST(CommonProcess, turnsAFailedStartIntoFalseAndALine)
{
    Process process;
    support::LogCapture log;
    EXPECT_FALSE(process.start(L"nosuchprogram.exe", 0, process::Redirect::None, nullptr));
    EXPECT_FALSE(process.start(L"nosuchprogram.exe", none, process::Credentials()));
    EXPECT_EQ(log.count("Failed to start process. Exception caught: Type: "), 2u) << log.text();
    EXPECT_TRUE(log.has(5, "{ vx::tarn::common::Process::start"));
    EXPECT_TRUE(log.has(
        5, "commandLine: nosuchprogram.exe, flags: 0, static_cast<int>(redirect): 0, static_cast<HANDLE>(userToken): "))
        << log.text();
    EXPECT_FALSE(process.getHandle());
    EXPECT_THROW(process.wait(), Win32Exception);
    EXPECT_THROW(process.getReturnCode(), Win32Exception);
}

TEST(CommonProcess, holdsTheChildOfTheLastStart)
{
    Process process;
    ASSERT_TRUE(process.start(shell + L" /c exit 7", 0, process::Redirect::None, nullptr));
    const SharedHandle first = process.getHandle();
    process.wait();
    EXPECT_EQ(process.getReturnCode(), 7u);
    EXPECT_FALSE(process.start(L"nosuchprogram.exe", 0, process::Redirect::None, nullptr));
    EXPECT_EQ(process.getReturnCode(), 7u);
    ASSERT_TRUE(process.start(shell, L"/c exit 8", process::Credentials()));
    process.wait();
    EXPECT_EQ(process.getReturnCode(), 8u);
    EXPECT_NE(process.getHandle(), first);
}

TEST(CommonProcess, keepsThePasswordOutOfTheLog)
{
    Process process;
    support::LogCapture log(6);
    process.start(shell, L"/c exit 0", {L".", L"no such user", L"s3cret"});
    EXPECT_EQ(log.count(".\\no such user:<password>'"), 1u) << log.text();
    process.start(shell, L"/c exit 0", {L".", L"no such user", none});
    EXPECT_EQ(log.count(".\\no such user:<no password>'"), 1u) << log.text();
    EXPECT_EQ(log.count("Reason: LogonUser failed") + log.count("Reason: CreateProcessWithLogonW failed"), 2u);
    EXPECT_EQ(log.count("s3cret"), 0u) << log.text();
}
