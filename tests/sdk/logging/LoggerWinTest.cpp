#include "loggerwin.h"

#include "logfolder.h"
#include "support/onthreads.h"

#include <cstdio>
#include <optional>
#include <windows.h>

using namespace VxQrlLogging;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct LoggerWinTest : testing::Test {
    void open(int level = 4, unsigned flags = 0) { logger->open(LogFolder::name1, LogFolder::name2, level, flags); }

    LogFolder folder;
    std::optional<LoggerWin> logger{std::in_place};
};

} // namespace

TEST_F(LoggerWinTest, framesItsRecordsWithBannersAndOpensAgainOnlyAfterAClose)
{
    logger->log(1, "before open");
    open();
    logger->log(4, "narrow %s %S", "\xc3\xa9\xff", L"wide");
    logger->log(2, L"wide %s %S", L"text", "narrow");
    logger->open("other", "file", 6, 0); // which it is already
    logger->log(5, "filtered");
    logger->close();
    EXPECT_FALSE(logger->isEnabled(1));
    logger->log(1, "after close");
    open(6);
    logger->log(6, "again");
    logger.reset();
    const auto lines = folder.lines();
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[0], "");
    EXPECT_THAT(lines[1].substr(34), testing::StartsWith("]  I: ***  LOGGING STARTED  *** (UTC"));
    EXPECT_EQ(lines[2].substr(34), "]  I: narrow \u00e9\ufffd wide") << "UTF-8 that is broken stays readable";
    EXPECT_EQ(lines[3].substr(36), "*E: wide text narrow");
    EXPECT_EQ(lines[4].substr(37), "I: ***  LOGGING ENDED  ***");
    EXPECT_EQ(lines[7].substr(40), "again");
    EXPECT_EQ(lines[8].substr(40), "***  LOG AUTO-CLOSED ***");
    EXPECT_FALSE(std::filesystem::exists(folder.root / "Vantorix" / "Log" / "other"));
}

TEST_F(LoggerWinTest, writesMessagesUpToTheLargeBuffer)
{
    LogFolder::configure(L"", L"LogMaxSizeKB", 1000);
    open();
    const std::string failure = "VX_QRL_LOG failure: too large message. Format: %s";
    std::vector<std::string> expected;
    for (const std::size_t size : {0, 1, 2006, 2007, 65494, 65495}) {
        logger->log(4, L"%s", std::wstring(size, L'w').c_str());
        expected.push_back(size <= 65494 ? std::string(size, 'w') : failure);
    }
    for (const std::size_t size : {0, 1, 2046, 2047, 65534, 65535}) {
        const std::string a(size / 2, 'a'), b(size - size / 2, 'b');
        logger->log(4, "%s", (a + b).c_str());
        expected.push_back(size <= 65534 ? a + b : failure);
        logger->write(4, a, b);
        expected.push_back(size <= 65534 ? a + b : failure + "%s");
    }
    const auto seen = folder.messages();
    ASSERT_EQ(seen.size(), expected.size());
    for (std::size_t i = 0; i < seen.size(); ++i)
        EXPECT_TRUE(seen[i] == expected[i]) << i << ": " << seen[i].size() << " instead of " << expected[i].size();
}

TEST_F(LoggerWinTest, putsOffEverythingWhenDeferred)
{
    LogFolder::configure(L"", L"LogLevel", 4);
    open(1, LOG_FLAG_DEFERRED);
    EXPECT_TRUE(logger->isEnabled(6));
    EXPECT_THAT(folder.files(), IsEmpty());
    logger->log(5, "above the level");
    EXPECT_FALSE(logger->isEnabled(5));
    logger->log(4, "at the level");
    EXPECT_EQ(folder.lines().size(), 3u) << "empty line, banner, one record";
    EXPECT_THAT(folder.messages(), ElementsAre("at the level"));
}

TEST_F(LoggerWinTest, stampsItsRecordsInUtcWithTheFlagAndInLocalTimeWithout)
{
    const auto minute = [](auto clock) {
        SYSTEMTIME t;
        clock(&t);
        char text[32];
        std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute);
        return std::string(text);
    };
    for (const unsigned flags : {0u, LOG_FLAG_UTC}) {
        const auto now = [&] { return flags ? minute(GetSystemTime) : minute(GetLocalTime); };
        const std::string before = now();
        open(4, flags);
        logger->log(4, "narrow");
        logger->log(4, L"wide");
        logger->close();
        const std::vector<std::string> lines = folder.lines();
        ASSERT_EQ(lines.size(), 5u);
        EXPECT_EQ(lines[1].find("(UTC+00:00, local:") != std::string::npos, flags == LOG_FLAG_UTC);
        for (std::size_t i = 1; i < lines.size(); ++i)
            EXPECT_THAT(lines[i], testing::AnyOf(testing::StartsWith(before), testing::StartsWith(now())));
        std::filesystem::remove(folder.file());
    }
}

TEST_F(LoggerWinTest, readsItsLevelFromTheNearestValidValue)
{
    constexpr auto all = L"", program = L"\\prog", file = L"\\prog\\part";
    const std::tuple<const char*, const wchar_t*, unsigned long, std::uint64_t, unsigned long, int> rows[] = {
        {"all logs", all, REG_DWORD, 3, 4, 3},
        {"the program", program, REG_DWORD, 5, 4, 5},
        {"the file", file, REG_DWORD, 6, 4, 6},
        {"binary", file, REG_BINARY, 1, 4, 5},
        {"too long", file, REG_DWORD, 1, 8, 5},
        {"too short", file, REG_DWORD, 1, 2, 5},
        {"marked as absent", file, REG_DWORD, 0xFFFFFFFF, 4, 5},
    };
    for (const auto& [trace, key, type, number, size, level] : rows) {
        LogFolder::configure(key, L"LogLevel", type, &number, size);
        open();
        EXPECT_TRUE(logger->isEnabled(level) && !logger->isEnabled(level + 1)) << trace;
        logger->close();
    }
}

// The debugger's texts arrive as exceptions of the calling thread.
static std::wstring debuggerText;
static LONG CALLBACK takeDebuggerText(EXCEPTION_POINTERS* info)
{
    if (info->ExceptionRecord->ExceptionCode != 0x4001000A)
        return EXCEPTION_CONTINUE_SEARCH;
    debuggerText += reinterpret_cast<const wchar_t*>(info->ExceptionRecord->ExceptionInformation[1]);
    return EXCEPTION_CONTINUE_EXECUTION;
}

TEST_F(LoggerWinTest, showsItsRecordsToTheDebuggerWhenConfigured)
{
    const auto handler = AddVectoredExceptionHandler(1, takeDebuggerText);
    open();
    logger->log(4, "unseen");
    logger->close();
    EXPECT_EQ(debuggerText, L"");
    LogFolder::configure(L"\\prog", L"DebugOutputLogging", 2);
    open();
    logger->log(3, "seen");
    RemoveVectoredExceptionHandler(handler);
    EXPECT_TRUE(debuggerText.ends_with(L"] .W: seen\r\n"));
}

TEST_F(LoggerWinTest, keepsTheLastError)
{
    const auto kept = [](const char* what, auto&& call) {
        SetLastError(1234);
        call();
        EXPECT_EQ(GetLastError(), 1234u) << what;
    };
    LogFolder::configure(L"", L"LogMaxSizeKB", 0);
    kept("open", [this] { open(); });
    kept("rotating", [this] { logger->log(4, "x"); });
    kept("too large", [this] { logger->log(4, "%70000s", "x"); });
    kept("close", [this] { logger->close(); });
    SetEnvironmentVariableW(L"ProgramData", L"Z:\\no|place");
    kept("failing open", [this] { open(); });
}

TEST_F(LoggerWinTest, survivesCloseAndOpenWhileThreadsLog)
{
    open();
    support::onThreads(5, [this](int thread) {
        for (int i = 0; i < 50; ++i)
            if (thread == 0) {
                logger->close();
                open();
            } else {
                logger->log(4, "message");
            }
    });
}
