#include "logging/logcontext.h"
#include "support/logcapture.h"

#include <map>
#include <thread>

using namespace vx::logging;

namespace {

struct Nested {
    static void outer()
    {
        VX_LOG_SCOPE();
        LogStream(Level::Info) << "in outer";
        inner();
        LogStream(Level::Error) << "back";
    }
    static void inner()
    {
        VX_LOG_SCOPE();
        LogStream(Level::Warning) << "in inner";
    }
};

} // namespace

TEST(Escape, spellsOutControlCharactersOnly)
{
    EXPECT_EQ(escape(std::string_view("\0\a\b\t\n\v\f\r", 8)), R"(\0\a\b\t\n\v\f\r)");
    EXPECT_EQ(escape("\x01\x06\x0e\x1b\x1f"), R"(\001\006\016\033\037)");
    EXPECT_EQ(escape("a\\b \x7f \xc3\xa9 100%"), "a\\b \x7f \xc3\xa9 100%");
    EXPECT_EQ(escape("\tmiddle\nend\r"), R"(\tmiddle\nend\r)");
}

TEST(LogScope, indentsWhatLiesBetweenItsBraces)
{
    support::LogCapture log;
    Nested::outer();
    EXPECT_EQ(log.text(), "{ `anonymous-namespace'::Nested::outer\n"
                          "  in outer\n"
                          "  { `anonymous-namespace'::Nested::inner\n"
                          "    in inner\n"
                          "  } `anonymous-namespace'::Nested::inner\n"
                          "  back\n"
                          "} `anonymous-namespace'::Nested::outer\n");
}

TEST(LogScope, leavesNoTraceWhenDebugIsFiltered)
{
    support::LogCapture log(4);
    Nested::outer();
    EXPECT_EQ(log.text(), "in outer\nin inner\nback\n");
}

TEST(LogContext, keepsTheDepthOfEachThreadApart)
{
    support::LogCapture log;
    const LogScope scope("here");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int k = 0; k < 100; ++k) {
                const LogScope inner("there");
                LogStream(Level::Debug) << "inside";
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    LogStream(Level::Debug) << "after";
    std::map<std::string, int> counts;
    for (const auto& line : log.lines())
        ++counts[line.text];
    const std::map<std::string, int> expected = {
        {"  after", 1}, {"  inside", 400}, {"{ here", 1}, {"{ there", 400}, {"} there", 400}};
    EXPECT_EQ(counts, expected);
}

TEST(LogContext, ignoresANegativeDepth)
{
    support::LogCapture log;
    LogContext context;
    context.write(Level::Info, "first", -1);
    context.write(Level::Info, "second", 1);
    context.write(Level::Info, "third", 1);
    context.write(Level::Info, "fourth", 0);
    EXPECT_EQ(log.text(), "first\nsecond\nthird\n  fourth\n");
}
