#include "logging/loggerwin.h"

#include "logfolder.h"
#include "logging/logstream.h"
#include "logging/processlogger.h"

#include <gmock/gmock.h>
#include <optional>
#include <regex>
#include <windows.h>

namespace VxQrlLogging {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LoggerWinTest : public testing::Test {
protected:
    void open(int level = 4, unsigned flags = 0) { logger().open(LogFolder::name1, LogFolder::name2, level, flags); }
    Logger& logger() { return *m_logger; }

    LogFolder m_folder;
    std::optional<LoggerWin> m_logger{std::in_place};
};

TEST_F(LoggerWinTest, framesItsRecordsWithBanners)
{
    logger().log(1, "before open");
    open();
    logger().log(4, "narrow %s %S", "\xc3\xa9\xff", L"wide");
    logger().log(2, L"wide %s %S", L"text", "narrow");
    logger().log(5, "filtered");
    logger().close();
    logger().log(1, "after close");
    const auto lines = readLogLines(m_folder.file());
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[0], L"");
    EXPECT_TRUE(std::regex_match(
        lines[1], std::wregex(LR"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[[0-9a-f]{4}\.[0-9a-f]{4}\]  I: )"
                              LR"(\*\*\*  LOGGING STARTED  \*\*\* \(UTC[+-]\d+:-?\d\d, session: 0x[0-9a-f]+\))")));
    EXPECT_EQ(lines[2].substr(34), L"]  I: narrow \u00e9\ufffd wide") << "UTF-8 that is broken stays readable";
    EXPECT_EQ(lines[3].substr(36), L"*E: wide text narrow");
    EXPECT_EQ(lines[4].substr(37), L"I: ***  LOGGING ENDED  ***");
}

TEST_F(LoggerWinTest, marksEachLevel)
{
    open(9);
    for (const int level : {-1, 1, 2, 3, 4, 5, 6, 7})
        logger().log(level, "at %d", level);
    std::vector<std::string> marks;
    for (const std::string& line : m_folder.lines())
        if (line.find(": at ") != std::string::npos)
            marks.push_back(line.substr(36));
    EXPECT_THAT(marks,
        ElementsAre("  : at -1", "*F: at 1", "*E: at 2", ".W: at 3", " I: at 4", " D: at 5", " V: at 6", "  : at 7"));
}

TEST_F(LoggerWinTest, writesMessagesUpToTheLargeBuffer)
{
    LogFolder::configure(L"", L"LogMaxSizeKB", 1000);
    open();
    const std::string failure = "VX_QRL_LOG failure: too large message. Format: %s";
    std::vector<std::string> expected;
    for (const std::size_t size : {0, 1, 2006, 2007, 65494, 65495}) {
        logger().log(4, L"%s", std::wstring(size, L'w').c_str());
        expected.push_back(size <= 65494 ? std::string(size, 'w') : failure);
    }
    for (const std::size_t size : {0, 1, 2046, 2047, 65534, 65535}) {
        logger().log(4, "%s", std::string(size, 'n').c_str());
        expected.push_back(size <= 65534 ? std::string(size, 'n') : failure);
    }
    for (const std::size_t size : {0, 2046, 2047, 65534, 65535}) {
        logger().log(4, "%s%s", std::string(size / 2, 'a').c_str(), std::string(size - size / 2, 'b').c_str());
        expected.push_back(
            size <= 65534 ? std::string(size / 2, 'a') + std::string(size - size / 2, 'b') : failure + "%s");
    }
    logger().log(4, "%s%s", nullptr, "text");
    expected.push_back("(null)text");
    std::vector<std::string> seen;
    for (const std::string& message : m_folder.messages())
        seen.push_back(message);
    ASSERT_EQ(seen.size(), expected.size());
    for (std::size_t i = 0; i < seen.size(); ++i)
        EXPECT_TRUE(seen[i] == expected[i]) << i << ": " << seen[i].size() << " instead of " << expected[i].size();
}

TEST_F(LoggerWinTest, putsOffEverythingWhenDeferred)
{
    LogFolder::configure(L"", L"LogLevel", 4);
    open(1, LOG_FLAG_DEFERRED);
    EXPECT_TRUE(logger().isEnabled(6));
    EXPECT_THAT(m_folder.files(), IsEmpty());
    logger().log(5, "above the level");
    EXPECT_FALSE(logger().isEnabled(5));
    logger().log(4, "at the level");
    EXPECT_EQ(m_folder.lines().size(), 3u) << "empty line, banner, one record";
    EXPECT_THAT(m_folder.messages(), ElementsAre("at the level"));
}

TEST_F(LoggerWinTest, ignoresASecondOpenButOpensAgainAfterClose)
{
    open();
    logger().open("other", "file", 6, 0);
    EXPECT_FALSE(logger().isEnabled(5));
    logger().log(4, "first");
    logger().close();
    EXPECT_FALSE(logger().isEnabled(1));
    logger().open("prog", "part", 6, 0);
    logger().log(6, "second");
    m_logger.reset();
    EXPECT_THAT(m_folder.messages(), ElementsAre("first", "second"));
    EXPECT_EQ(m_folder.lines().back().substr(40), "***  LOG AUTO-CLOSED ***");
    EXPECT_FALSE(std::filesystem::exists(m_folder.root() / "Vantorix" / "Log" / "other"));
}

TEST_F(LoggerWinTest, reflectsTheFlagsInItsBanner)
{
    open(4, LOG_FLAG_BANNER_DEBUG);
    logger().close();
    EXPECT_THAT(m_folder.files(), IsEmpty()) << "the banner is filtered and nothing else was written";
    open(5, LOG_FLAG_BANNER_DEBUG | LOG_FLAG_UTC);
    const std::string banner = m_folder.lines()[1];
    EXPECT_TRUE(std::regex_search(banner, std::regex(R"(\]  D: \*\*\*  LOGGING STARTED  \*\*\* \(UTC\+00:00, local:)")))
        << banner;
}

TEST_F(LoggerWinTest, readsItsLevelFromTheNearestValidValue)
{
    const wchar_t* const file = L"\\prog\\part";
    const wchar_t* const program = L"\\prog";
    const std::uint64_t wide = 1;
    const std::uint16_t narrow = 1;
    LogFolder::configure(L"", L"LogLevel", 3);
    open();
    EXPECT_FALSE(logger().isEnabled(4)) << "all logs";
    logger().close();
    LogFolder::configure(program, L"LogLevel", 5);
    open();
    EXPECT_TRUE(logger().isEnabled(5)) << "the program";
    logger().close();
    LogFolder::configure(file, L"LogLevel", 6);
    open();
    EXPECT_TRUE(logger().isEnabled(6)) << "the file";
    logger().close();

    struct Case {
        const char* trace;
        unsigned long type;
        const void* data;
        unsigned long size;
    };
    const unsigned long none = 0xFFFFFFFF;
    for (const Case& c : {Case{"text", REG_SZ, L"1", 4}, Case{"binary", REG_BINARY, &wide, 4},
             Case{"quad word", REG_QWORD, &wide, 8}, Case{"too long", REG_DWORD, &wide, 8},
             Case{"too short", REG_DWORD, &narrow, 2}, Case{"marked as absent", REG_DWORD, &none, 4}}) {
        LogFolder::configure(file, L"LogLevel", c.type, c.data, c.size);
        open();
        EXPECT_TRUE(logger().isEnabled(5) && !logger().isEnabled(6)) << c.trace;
        logger().close();
    }
}

// The debugger's texts arrive as exceptions of the calling thread.
std::wstring debuggerText;
LONG CALLBACK takeDebuggerText(EXCEPTION_POINTERS* info)
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
    logger().log(4, "unseen");
    logger().close();
    EXPECT_EQ(debuggerText, L"");
    LogFolder::configure(L"\\prog", L"DebugOutputLogging", 2);
    open();
    logger().log(3, "seen");
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
    kept("filtered", [this] { logger().log(5, "x"); });
    kept("rotating", [this] { logger().log(4, "x"); });
    kept("too large", [this] { logger().log(4, "%70000s", "x"); });
    kept("flush", [this] { logger().flush(); });
    kept("close", [this] { logger().close(); });
    SetEnvironmentVariableW(L"ProgramData", L"Z:\\no|place");
    kept("failing open", [this] { open(); });
    kept("without a file", [this] { logger().log(4, "x"); });
    kept("destruction", [this] { m_logger.reset(); });
}

TEST_F(LoggerWinTest, keepsTheLastErrorThroughTheFrontEnd)
{
    VxQrlLogging::open(LogFolder::name1, LogFolder::name2, 5, 0);
    SetLastError(1234);
    {
        const vx::logging::LogScope scope("scope");
        vx::logging::LogStream(vx::logging::Level::Info) << L"wide" << 1;
    }
    const DWORD kept = GetLastError();
    VxQrlLogging::close();
    EXPECT_EQ(kept, 1234u);
    EXPECT_THAT(m_folder.messages(), ElementsAre("{ scope", "  wide1", "} scope"));
}

TEST_F(LoggerWinTest, staysSilentWithoutAFolder)
{
    SetEnvironmentVariableW(L"ProgramData", (m_folder.root() / "file").c_str());
    {
        std::FILE* file = _wfopen((m_folder.root() / "file").c_str(), L"w");
        ASSERT_TRUE(file);
        std::fclose(file);
    }
    open();
    EXPECT_TRUE(logger().isEnabled(4));
    logger().log(4, "lost");
    logger().flush();
    logger().close();
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.root() / "file"));
}

TEST_F(LoggerWinTest, survivesCloseAndOpenWhileThreadsLog)
{
    open();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this] {
            for (int i = 0; i < 50; ++i)
                logger().log(4, "message");
        });
    for (int i = 0; i < 10; ++i) {
        logger().close();
        open();
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST(ProcessLogger, carriesTheFrontEnd)
{
    LogFolder folder;
    EXPECT_FALSE(isEnabled(1));
    open("prog", "part", 5, 0);
    EXPECT_TRUE(isEnabled(5));
    {
        const vx::logging::LogScope scope("place");
        vx::logging::LogStream(vx::logging::Level::Warning) << "100%s\t" << L"\u00e9\n";
    }
    log(4, L"wide %s", L"entry");
    close();
    EXPECT_FALSE(isEnabled(1));
    EXPECT_THAT(folder.messages(), ElementsAre("{ place", "  100%s\\t\xe9\\n", "} place", "wide entry"));
}

} // namespace
} // namespace VxQrlLogging
