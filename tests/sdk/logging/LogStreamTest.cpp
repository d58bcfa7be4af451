#include "logging/logstream.h"
#include "logging/functionname.h"
#include "support/logcapture.h"

#include <limits>
#include <ostream>

using namespace vx::logging;
using testing::ElementsAre;

namespace {

struct Point {
    int x;
    friend std::ostream& operator<<(std::ostream& stream, const Point& p) { return stream << "P" << p.x; }
};

struct Unprintable {
    friend std::ostream& operator<<(std::ostream&, const Unprintable&) { throw std::runtime_error("no"); }
};

struct LogStreamTest : testing::Test {
    support::LogCapture log{6};
};

} // namespace

TEST_F(LogStreamTest, printsEachKindOfValueAsAStreamWould)
{
    const char* noText = nullptr;
    const wchar_t* noWideText = nullptr;
    LogStream(Level::Info) << 'c' << true << static_cast<unsigned char>('u') << ' ' << -5 << ' '
                           << std::numeric_limits<unsigned long long>::max() << ' ' << 1.5 << ' ' << Point{7};
    LogStream(Level::Info) << std::string("narrow ") << L"wide \u00e9 " << std::wstring(L"\u6f22") << noText
                           << noWideText << Unprintable{} << " 100%s %n";
    EXPECT_EQ(log.text(), "c1u -5 18446744073709551615 1.5 P7\n"
                          "narrow wide \xc3\xa9 \xe6\xbc\xa2 100%s %n\n");
}

TEST_F(LogStreamTest, mapsItsLevelsToTheBackEnds)
{
    for (const int level : {0, 1, 2, 3, 4, -1})
        LogStream(static_cast<Level>(level)) << level;
    std::string seen;
    for (const auto& line : log.lines())
        seen += line.text + "=" + std::to_string(line.level) + " ";
    EXPECT_EQ(seen, "0=5 1=4 2=3 3=2 4=6 -1=6 ");
}

TEST_F(LogStreamTest, growsBeyondItsBuffer)
{
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

TEST_F(LogStreamTest, namesEachExpressionOfTheList)
{
    const std::pair<int, int> pair(1, 2);
    VX_LOG_VALUES(pair.first, std::max(1, 2), std::string("a,\"b\""), ',', std::pair<int, int>(3, 4).second);
    EXPECT_EQ(log.text(), R"(pair.first: 1, std::max(1, 2): 2, std::string("a,\"b\""): a,"b", ',': ,, )"
                          "std::pair<int, int>(3, 4).second: 4\n");
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

TEST(FunctionName, cutsTheQualifiedNameOut)
{
    struct {
        const char* pretty;
        const char* name;
    } const rows[] = {
        {"void f()", "f"},
        {"int main(int, char**)", "main"},
        {"virtual void vx::scheduler::Task::setTriggers(const Triggers&)", "vx::scheduler::Task::setTriggers"},
        {"vx::Event::Event(bool)", "vx::Event::Event"},
        {"std::map<int, std::function<void(int)> > vx::make(std::string)", "vx::make"},
        {"const char* vx::text(int) const", "vx::text"},
        {"int* const& vx::reference()", "vx::reference"},
        {"char &vx::attached()", "vx::attached"},
        {"void vx::{anonymous}::f(int)", "vx::`anonymous-namespace'::f"},
        {"void vx::(anonymous namespace)::f(int)", "vx::`anonymous-namespace'::f"},
        {"T vx::get(const K&) [with T = int; K = std::pair<int, int>]", "vx::get"},
    };
    for (const auto& row : rows)
        EXPECT_STREQ(FunctionName(row.pretty).c_str(), row.name) << row.pretty;
    EXPECT_EQ(FunctionName("void " + std::string(400, 'n') + "()").view().size(), 255u);
}
