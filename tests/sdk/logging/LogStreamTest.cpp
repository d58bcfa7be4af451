#include "logging/logstream.h"
#include "support/logcapture.h"

#include <limits>
#include <ostream>

using namespace vx::logging;

namespace {

struct Unprintable {
    friend std::ostream& operator<<(std::ostream&, const Unprintable&) { throw std::runtime_error("no"); }
};

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
