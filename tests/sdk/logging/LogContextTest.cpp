#include "logging/logcontext.h"
#include "support/logcapture.h"

#include <gmock/gmock.h>
#include <thread>

namespace vx::logging {
namespace {

using testing::ElementsAre;

std::vector<std::string> texts(const support::LogCapture& log)
{
    std::vector<std::string> result;
    for (const auto& line : log.lines())
        result.push_back(line.text);
    return result;
}

TEST(Escape, spellsOutControlCharactersOnly)
{
    EXPECT_EQ(escape(std::string_view("\0\a\b\t\n\v\f\r", 8)), R"(\0\a\b\t\n\v\f\r)");
    EXPECT_EQ(escape("\x01\x06\x0e\x1b\x1f"), R"(\001\006\016\033\037)");
    EXPECT_EQ(escape("a\\b \x7f \xc3\xa9 100%"), "a\\b \x7f \xc3\xa9 100%");
    EXPECT_EQ(escape("\tmiddle\nend\r"), R"(\tmiddle\nend\r)");
}

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

TEST(LogScope, indentsWhatLiesBetweenItsBraces)
{
    support::LogCapture log;
    Nested::outer();
    const std::string name = "vx::logging::`anonymous-namespace'::Nested::";
    EXPECT_THAT(texts(log), ElementsAre("{ " + name + "outer", "  in outer", "  { " + name + "inner", "    in inner",
                                "  } " + name + "inner", "  back", "} " + name + "outer"));
}

TEST(LogScope, leavesNoTraceWhenDebugIsFiltered)
{
    support::LogCapture log(4);
    Nested::outer();
    EXPECT_THAT(texts(log), ElementsAre("in outer", "in inner", "back"));
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
    for (const std::string& text : texts(log))
        ++counts[text];
    EXPECT_THAT(counts, ElementsAre(std::pair("  after", 1), std::pair("  inside", 400), std::pair("{ here", 1),
                            std::pair("{ there", 400), std::pair("} there", 400)));
}

TEST(LogContext, ignoresANegativeDepth)
{
    support::LogCapture log;
    LogContext context;
    context.write(Level::Info, "first", -1);
    context.write(Level::Info, "second", 1);
    context.write(Level::Info, "third", 1);
    context.write(Level::Info, "fourth", 0);
    EXPECT_THAT(texts(log), ElementsAre("first", "second", "third", "  fourth"));
}

} // namespace
} // namespace vx::logging
