#include "logging/loggerwin.h"

#include "logfolder.h"
#include "logging/logstream.h"
#include "logging/processlogger.h"

#include <optional>
#include <regex>
#include <thread>

using namespace VxQrlLogging;
using testing::ElementsAre;

namespace {

struct LoggerWinTest : testing::Test {
    void open(int level = 4, unsigned flags = 0) { logger->open(LogFolder::name1, LogFolder::name2, level, flags); }

    LogFolder folder;
    std::optional<LoggerWin> logger{std::in_place};
};

} // namespace

TEST_F(LoggerWinTest, framesItsRecordsWithBanners)
{
    logger->log(1, "before open");
    open(6);
    logger->log(4, "narrow %s %S", "\xc3\xa9\xff", L"wide");
    logger->log(2, L"wide %s %S", L"text", "narrow");
    for (const int level : {-1, 1, 3, 5, 6, 7})
        logger->log(level, "%d", level);
    logger->close();
    logger->log(1, "after close");
    const auto lines = folder.lines();
    ASSERT_EQ(lines.size(), 10u);
    EXPECT_EQ(lines[0], "");
    EXPECT_TRUE(std::regex_match(
        lines[1], std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[[0-9a-f]{4}\.[0-9a-f]{4}\]  I: )"
                             R"(\*\*\*  LOGGING STARTED  \*\*\* \(UTC[+-]\d+:-?\d\d, session: 0x[0-9a-f]+\))")));
    std::vector<std::string> marked;
    for (std::size_t i = 2; i < lines.size(); ++i)
        marked.push_back(lines[i].substr(34));
    EXPECT_THAT(marked, ElementsAre("]  I: narrow \u00e9\ufffd wide", "] *E: wide text narrow", "]   : -1", "] *F: 1",
                            "] .W: 3", "]  D: 5", "]  V: 6", "]  I: ***  LOGGING ENDED  ***"));
}

TEST_F(LoggerWinTest, writesMessagesUpToTheLargeBuffer)
{
    LogFolder::configure(L"LogMaxSizeKB", 1000);
    open();
    const std::string failure = "VX_QRL_LOG failure: too large message. Format: %s";
    std::vector<std::string> expected = {"(null)text"};
    logger->log(4, "%s%s", nullptr, "text");
    for (const std::size_t size : {0, 1, 2006, 2007, 65494, 65495}) {
        logger->log(4, L"%s", std::wstring(size, L'w').c_str());
        expected.push_back(size <= 65494 ? std::string(size, 'w') : failure);
    }
    for (const std::size_t size : {0, 1, 2046, 2047, 65534, 65535}) {
        const std::string a(size / 2, 'a'), b(size - size / 2, 'b');
        logger->log(4, "%s", (a + b).c_str());
        logger->log(4, "%s%s", a.c_str(), b.c_str());
        for (const char* secondOfFormat : {"", "%s"})
            expected.push_back(size <= 65534 ? a + b : failure + secondOfFormat);
    }
    EXPECT_TRUE(folder.messages() == expected) << "too long to be shown";
}

TEST_F(LoggerWinTest, ignoresASecondOpenButOpensAgainAfterClose)
{
    open();
    logger->open("other", "file", 6, 0);
    EXPECT_FALSE(logger->isEnabled(5));
    logger->log(4, "first");
    logger->close();
    EXPECT_FALSE(logger->isEnabled(1));
    open(6);
    logger->log(6, "second");
    logger.reset();
    EXPECT_THAT(folder.messages(), ElementsAre("first", "second"));
    EXPECT_EQ(folder.lines().back().substr(40), "***  LOG AUTO-CLOSED ***");
    EXPECT_FALSE(std::filesystem::exists(folder.root / "Vantorix" / "Log" / "other"));
}

TEST_F(LoggerWinTest, readsItsLevelFromTheNearestValidValue)
{
    const wchar_t* const part = L"\\prog\\part";
    const std::tuple<const wchar_t*, DWORD, std::uint64_t, DWORD, int> rows[] = {{L"", REG_DWORD, 5, 4, 5},
        {L"\\prog", REG_DWORD, 6, 4, 6}, {part, REG_DWORD, 7, 4, 7},
        // Of another type, too long, too short, marked as absent.
        {part, REG_SZ, '1', 4, 6}, {part, REG_BINARY, 1, 4, 6}, {part, REG_QWORD, 1, 8, 6}, {part, REG_DWORD, 1, 8, 6},
        {part, REG_DWORD, 1, 2, 6}, {part, REG_DWORD, 0xFFFFFFFF, 4, 6}};
    for (const auto& [key, type, data, size, level] : rows) {
        LogFolder::configure(key, L"LogLevel", type, &data, size);
        open();
        EXPECT_TRUE(logger->isEnabled(level) && !logger->isEnabled(level + 1)) << key << ' ' << type << ' ' << size;
        logger->close();
    }
}

TEST_F(LoggerWinTest, keepsTheLastError)
{
    const auto kept = [](const char* what, auto&& call) {
        SetLastError(1234);
        call();
        EXPECT_EQ(GetLastError(), 1234u) << what;
    };
    LogFolder::configure(L"LogMaxSizeKB", 0);
    kept("open", [this] { open(); });
    kept("filtered", [this] { logger->log(5, "x"); });
    kept("rotating", [this] { logger->log(4, "x"); });
    kept("too large", [this] { logger->log(4, "%70000s", "x"); });
    kept("flush", [this] { logger->flush(); });
    kept("close", [this] { logger->close(); });
    SetEnvironmentVariableW(L"ProgramData", L"Z:\\no|place");
    kept("failing open", [this] { open(); });
    kept("without a file", [this] { logger->log(4, "x"); });
    kept("destruction", [this] { logger.reset(); });
}

TEST_F(LoggerWinTest, survivesCloseAndOpenWhileThreadsLog)
{
    open();
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this] {
            for (int i = 0; i < 50; ++i)
                logger->log(4, "message");
        });
    for (int i = 0; i < 10; ++i) {
        logger->close();
        open();
    }
}

TEST(ProcessLogger, carriesTheFrontEndAndKeepsTheLastError)
{
    const LogFolder folder;
    open("prog", "part", 5, 0);
    SetLastError(1234);
    {
        const vx::logging::LogScope scope("place");
        vx::logging::LogStream(vx::logging::Level::Warning) << "100%s\t" << L"\u00e9\n" << 1;
    }
    EXPECT_EQ(GetLastError(), 1234u);
    close();
    EXPECT_FALSE(isEnabled(1));
    EXPECT_THAT(folder.messages(), ElementsAre("{ place", "  100%s\\t\u00e9\\n1", "} place"));
}
