#include "logreading/linesplitter.h"

#include <gmock/gmock.h>

namespace logreading {
namespace {

using testing::ElementsAreArray;
using Lines = std::vector<std::string>;

std::string wide(std::u16string_view text)
{
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

Lines split(std::string_view bytes, std::size_t chunk)
{
    Lines lines;
    LineSplitter splitter;
    const auto sink = [&](std::string_view line) { lines.emplace_back(line); };
    for (; !bytes.empty(); bytes.remove_prefix(std::min(chunk, bytes.size())))
        splitter.take(bytes.substr(0, chunk), sink);
    splitter.finish(sink);
    return lines;
}

TEST(LineSplitter, givesTheSameLinesHoweverTheBytesCome)
{
    const std::u16string record = u"2026-11-22 10:00:00.000 [0010.0001]  I: ";
    const std::string narrow(record.begin(), record.end());
    struct {
        const char* trace;
        std::string bytes;
        Lines lines;
    } const cases[] = {
        {"a log", wide(u"\uFEFFone\r\n\r\ntwo\r\n"), {"one", "", "two"}},
        {"text outside ASCII", wide(u"\u00FC \u4E2D \U0001F600\r\n"), {"\u00FC \u4E2D \U0001F600"}},
        {"characters with the byte of a line feed", wide(u"a\u0A05\u050A\r\nb\r\n"), {"a\u0A05\u050A", "b"}},
        {"half a pair", wide(u"a\xD800z\xDC00\r\n"), {"a\uFFFDz\uFFFD"}},
        {"no end", wide(u"one\r\ntw"), {"one", "tw"}},
        {"lines of another program", wide(u"one\r\n") + "two\r\nthr\xC3\xA9\xE9\n" + wide(u"four\r\n"),
            {"one", "two", "thr\u00E9\uFFFD", "four"}},
        {"UTF-8 that is too long, or of surrogates", "\xC0\x80 \xE0\x80\x80 \xED\xA0\x80 \xF4\x90\x80\x80\n",
            {"\uFFFD\uFFFD \uFFFD\uFFFD\uFFFD \uFFFD\uFFFD\uFFFD \uFFFD\uFFFD\uFFFD\uFFFD"}},
        {"a record cut within a character", wide(u"cut he") + "r" + wide(u"2026-11-22\r\nnext\r\n"),
            {"cut he", "2026-11-22", "next"}},
        {"line feeds that end nothing", std::string("\0\n\1\n\2\n", 6) + wide(u"\nnext\n"),
            {"\u0A00\u0A01\u0A02", "next"}},
        {"a record cut behind a character", wide(record + u"cut he" + record + u"next\r\n"),
            {narrow + "cut he", narrow + "next"}},
        {"zeros of a machine that went down", wide(u"one\r\n") + std::string(1001, '\0') + wide(record + u"\r\n"),
            {"one", "\uFFFD", narrow}},
        {"the same, an even number", std::string(1000, '\0') + wide(record + u"\r\n"), {"\uFFFD", narrow}},
        {"another program's text without an end", "50 %\r" + wide(record + u"\r\n"), {"50 %", narrow}},
        {"half a character at the end", wide(u"one\r\ntwo") + "x", {"one", "two"}},
        {"the end of UTF-8", "one\n", {"one"}},
        {"nothing", "", {}},
    };
    for (const auto& [trace, bytes, lines] : cases)
        for (const std::size_t chunk :
            {std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{7}, bytes.size() + 1}) {
            SCOPED_TRACE(trace + (" by " + std::to_string(chunk)));
            EXPECT_THAT(split(bytes, chunk), ElementsAreArray(lines));
        }
}

TEST(LineSplitter, doesNotGrowWithALineThatNeverEnds)
{
    const auto lines = split(std::string(5'000'000, 'x'), 65'536);
    ASSERT_GT(lines.size(), 3u);
    EXPECT_LT(lines.front().size(), 1'200'000u);
}

} // namespace
} // namespace logreading
