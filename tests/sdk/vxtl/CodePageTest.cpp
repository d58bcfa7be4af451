#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/guarded.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <windows.h>

using namespace vx;
using support::thrown;

namespace {

/// The texts stand in this code page, which is most systems' in the west.
struct CodePage : testing::Test {
    void SetUp() override
    {
        if (GetACP() != 1252)
            GTEST_SKIP() << "the system's code page is " << GetACP();
    }
};

} // namespace

TEST_F(CodePage, convertsBothWays)
{
    const std::pair<const char*, const wchar_t*> rows[] = {
        {"", L""}, {"plain", L"plain"}, {"caf\xe9 \x80", L"caf\u00e9 \u20ac"}, {"\x99\xff", L"\u2122\u00ff"}};
    for (const auto& [narrow, wide] : rows) {
        EXPECT_EQ(str::toMultibyte(wide), narrow);
        EXPECT_EQ(str::toUnicode(narrow), wide);
    }
    EXPECT_EQ(str::toMultibyte(L"x\u6f22y"), "x?y") << "not in this code page";
}

TEST(TextConversion, tellsWhatItCantConvert)
{
    const auto code = [](auto convert) { return thrown<Win32Exception>(convert).code(); };
    EXPECT_EQ(code([] { str::toUnicode({nullptr, 1}); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(code([] { str::toMultibyte({nullptr, 1}); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(code([] { str::fromUtf8("\xc3"); }), ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_EQ(code([] { str::toUtf8(L"\xd800"); }), ERROR_NO_UNICODE_TRANSLATION);
}

TEST_F(CodePage, isReadableInTheLog)
{
    const std::pair<const char*, const char*> rows[] = {{"Zugriff f\xfcr \x80", "Zugriff f\xc3\xbcr \xe2\x82\xac"},
        {"last read: 'f\xc3\xbcr'", "last read: 'f\xc3\xbcr'"}}; // as the JSON library quotes it
    for (const auto& [text, logged] : rows) {
        support::LogCapture log;
        guarded("Caught: ", [text = text] { throw std::runtime_error(text); });
        guarded([text = text] { throw std::runtime_error(text); });
        EXPECT_EQ(log.text(), std::string("Caught: ") + logged + "\nException occurred. " + logged + "\n");
    }
}
