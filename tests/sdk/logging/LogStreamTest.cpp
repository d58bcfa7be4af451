#include "logging/logstream.h"
#include "support/logcapture.h"

#include <gmock/gmock.h>
#include <limits>
#include <ostream>

namespace vx::logging {
namespace {

using testing::ElementsAre;

struct Point {
    int x;
    friend std::ostream& operator<<(std::ostream& stream, const Point& p) { return stream << "P" << p.x; }
};

struct Unprintable {
    friend std::ostream& operator<<(std::ostream&, const Unprintable&) { throw std::runtime_error("no"); }
};

TEST(LogStream, printsEachKindOfValueAsAStreamWould)
{
    support::LogCapture log;
    const char* noText = nullptr;
    const wchar_t* noWideText = nullptr;
    LogStream(Level::Info) << 'c' << true << static_cast<unsigned char>('u') << ' ' << -5 << ' '
                           << std::numeric_limits<unsigned long long>::max() << ' ' << 1.5 << ' ' << Point{7};
    LogStream(Level::Info) << std::string("narrow ") << L"wide \u00e9 " << std::wstring(L"\u6f22") << noText
                           << noWideText << Unprintable{} << "!";
    EXPECT_TRUE(log.has(4, "c1u -5 18446744073709551615 1.5 P7")) << log.text();
    EXPECT_TRUE(log.has(4, "narrow wide \xc3\xa9 \xe6\xbc\xa2!")) << log.text();
}

TEST(LogStream, mapsItsLevelsToTheBackEnds)
{
    support::LogCapture log(6);
    for (const int level : {0, 1, 2, 3, 4, -1})
        LogStream(static_cast<Level>(level)) << level;
    std::vector<std::pair<std::string, int>> seen;
    for (const auto& line : log.lines())
        seen.emplace_back(line.text, line.level);
    using P = std::pair<std::string, int>;
    EXPECT_THAT(seen, ElementsAre(P("0", 5), P("1", 4), P("2", 3), P("3", 2), P("4", 6), P("-1", 6)));
}

TEST(LogStream, growsBeyondItsBuffer)
{
    support::LogCapture log;
    // Around the size of the buffer on the stack, in pieces and at once.
    for (const std::size_t size : {510, 511, 512, 513, 1023, 5000}) {
        LogStream(Level::Info) << std::string(size, 'x');
        LogStream pieces(Level::Info);
        for (std::size_t i = 0; i < size; ++i)
            pieces << 'y';
    }
    std::vector<std::size_t> sizes;
    for (const auto& line : log.lines())
        sizes.push_back(line.text.size());
    EXPECT_THAT(sizes, ElementsAre(510, 510, 511, 511, 512, 512, 513, 513, 1023, 1023, 5000, 5000));
}

TEST(LogStream, takesPercentSignsLiterally)
{
    support::LogCapture log;
    LogStream(Level::Info) << "100%s %n";
    EXPECT_TRUE(log.has(4, "100%s %n")) << log.text();
}

TEST(LogValues, namesEachExpressionOfTheList)
{
    support::LogCapture log;
    const std::pair<int, int> pair(1, 2);
    VX_LOG_VALUES(pair.first, std::max(1, 2), std::string("a,\"b\""), ',', std::pair<int, int>(3, 4).second);
    EXPECT_TRUE(log.has(5, R"(pair.first: 1, std::max(1, 2): 2, std::string("a,\"b\""): a,"b", ',': ,, )"
                           "std::pair<int, int>(3, 4).second: 4"))
        << log.text();
}

TEST(LogValues, evaluatesNothingWhenDebugIsFiltered)
{
    support::LogCapture log(4);
    int calls = 0;
    VX_LOG_VALUES(++calls);
    EXPECT_EQ(calls, 0);
}

TEST(ArgumentName, survivesUnbalancedText)
{
    for (const std::string text : {"", ">", "\"open", "'", "\"\\", "a->b", "(,"}) {
        std::string_view names = text;
        details::takeArgumentName(names);
        EXPECT_EQ(names, "") << text;
    }
}

} // namespace
} // namespace vx::logging
