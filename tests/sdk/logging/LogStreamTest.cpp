#include "logging/logstream.h"
#include "logcontext.h"
#include "support/logcapture.h"
#include "support/onthreads.h"

#include <limits>
#include <map>
#include <ostream>

using namespace vx::logging;

namespace {

struct Unprintable {
    friend std::ostream& operator<<(std::ostream&, const Unprintable&) { throw std::runtime_error("no"); }
};

void nest(int depth)
{
    VX_LOG_SCOPE();
    if (depth > 0)
        nest(depth - 1);
    LogStream(Level::Error) << depth;
}

} // namespace

TEST(LogStream, printsEachKindOfValueAsAStreamWould)
{
    support::LogCapture log;
    const char* noText = nullptr;
    const wchar_t* noWideText = nullptr;
    LogStream(Level::Info) << 'c' << true << static_cast<unsigned char>('u') << ' ' << -5 << ' '
                           << std::numeric_limits<unsigned long long>::max() << ' ' << 1.5;
    LogStream(Level::Info) << std::string("narrow ") << L"wide \u00e9 " << std::wstring(L"\u6f22") << noText
                           << noWideText << Unprintable{} << " 100%s %n";
    EXPECT_EQ(log.text(), "c1u -5 18446744073709551615 1.5\nnarrow wide \xc3\xa9 \xe6\xbc\xa2 100%s %n\n");
}

TEST(LogStream, growsBeyondItsBuffer)
{
    support::LogCapture log;
    std::string expected;
    // Around the size of the buffer on the stack, at once and in pieces.
    for (const std::size_t size : {510, 511, 512, 513, 5000}) {
        const std::string text(size, 'x');
        LogStream(Level::Info) << text;
        LogStream pieces(Level::Info);
        for (const char c : text)
            pieces << c;
        expected += text + '\n' + text + '\n';
    }
    EXPECT_TRUE(log.text() == expected);
}

TEST(LogValues, namesEachExpressionOfTheList)
{
    support::LogCapture log;
    VX_LOG_VALUES(std::max(1, 2), std::string(",\""), ',', std::pair<int, int>(3, 4).second);
    EXPECT_EQ(log.text(), R"(std::max(1, 2): 2, std::string(",\""): ,", ',': ,, std::pair<int, int>(3, 4).second: 4)"
                          "\n");
}

TEST(LogValues, evaluatesNothingWhenDebugIsFiltered)
{
    support::LogCapture log(4);
    VX_LOG_VALUES((throw 1, 1));
}

TEST(Escape, spellsOutControlCharactersOnly)
{
    EXPECT_EQ(escape(std::string_view("\0\a\b\t\n\v\f\r", 8)), R"(\0\a\b\t\n\v\f\r)");
    EXPECT_EQ(escape("\x01\x06\x0e\x1b\x1f"), R"(\001\006\016\033\037)");
    EXPECT_EQ(escape("\ta\\b \x7f \xc3\xa9\n100%\r"), "\\ta\\b \x7f \xc3\xa9\\n100%\\r");
}

TEST(LogScope, indentsWhatLiesBetweenItsBracesUnlessDebugIsFiltered)
{
    const std::string scoped = "{ `anonymous-namespace'::nest\n"
                               "  { `anonymous-namespace'::nest\n"
                               "    0\n"
                               "  } `anonymous-namespace'::nest\n"
                               "  1\n"
                               "} `anonymous-namespace'::nest\n";
    for (const auto& [level, text] : {std::pair(5, scoped), {4, "0\n1\n"}}) {
        support::LogCapture log(level);
        nest(1);
        EXPECT_EQ(log.text(), text);
    }
}

TEST(LogContext, keepsTheDepthOfEachThreadApart)
{
    support::LogCapture log;
    const LogScope scope("here");
    support::onThreads(4, [](int) {
        for (int i = 0; i < 100; ++i) {
            const LogScope inner("there");
            LogStream(Level::Debug) << "inside";
        }
    });
    LogStream(Level::Debug) << "after";
    std::map<std::string, int> texts;
    for (const auto& line : log.lines())
        ++texts[line.text];
    EXPECT_EQ(texts, (std::map<std::string, int>{
                         {"{ here", 1}, {"{ there", 400}, {"  inside", 400}, {"} there", 400}, {"  after", 1}}));
}
