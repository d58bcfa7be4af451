#include "logcontext.h"
#include "support/logcapture.h"
#include "support/onthreads.h"

#include <set>

using namespace vx::logging;

namespace {

void nest(int depth)
{
    VX_LOG_SCOPE();
    if (depth > 0)
        nest(depth - 1);
    LogStream(Level::Error) << depth;
}

} // namespace

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

TEST(LogScope, givesItsDepthBackWhenDebugWasFilteredMeanwhile)
{
    support::LogCapture log;
    {
        const LogScope scope("scope");
        VxQrlLogging::details::processLevel = 4;
        LogStream(Level::Info) << "inside";
    }
    LogStream(Level::Info) << "after";
    EXPECT_EQ(log.text(), "{ scope\n  inside\nafter\n");
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
    std::set<std::string> texts;
    for (const auto& line : log.lines())
        texts.insert(line.text);
    EXPECT_THAT(texts, testing::ElementsAre("  after", "  inside", "{ here", "{ there", "} there"));
    EXPECT_EQ(log.lines().size(), 1202u);
}
