#include "reference/loglines.h"

#include <gtest/gtest.h>

using namespace tools;

// The other forms stand in the sources, so the committed page holds them.
TEST(LogLines, areReadBesideCommentsRawTextsAndTheTextsOfBrackets)
{
    const auto tokens = tokensOf(R"x(LogStream(Level::Info) << a; // LogStream(Level::Info) << "no";
        #define X LogStream(Level::Info) << "no";
        /* LogStream(Level::Info) << "no"; */ f([&] { LogStream(Level::Debug) << "in " << g(1, 2); }, "out");
        return "was it " + name + "x y" + R"(said "no" then)";)x");
    std::string all;
    for (const auto& line : logLinesOf(tokens, {}, {}))
        all += line.level + ": " + line.text + "\n";
    EXPECT_EQ(all, "debug: in <1>\npart: was it \npart: said \"no\" then\n");
}
