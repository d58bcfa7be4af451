#include "common/utils/escapeurl.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"

using vx::tarn::common::utils::escapeUrl;

TEST(EscapeUrl, keepsWhatIsPlainAndPercentCodesButThatOfABlank)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"", L""},
        {L"azAZ09-.~_", L"azAZ09-.~_"},
        {L"http://h:1/?a=b&c#d+", L"http%3A%2F%2Fh%3A1%2F%3Fa%3Db%26c%23d%2B"},
        {L"a b", L"a%20b"},
        {L"a%20b%2020", L"a%2520b%252020"},
        {L"%41%2", L"%41%2"},
        {L"%%20", L"%%2520"},
        {L"\xE9\x20AC", L"%C3%A9%E2%82%AC"},
        {L"\x1F\x7F", L"%1F%7F"},
    };
    for (const auto& [url, escaped] : rows)
        EXPECT_EQ(escapeUrl(url), escaped);
}

TEST(EscapeUrl, refusesWhatIsNoText)
{
    const auto refusal = support::thrown<vx::Win32Exception>([] { escapeUrl(L"a\xD800"); });
    EXPECT_EQ(refusal.code(), 1113u);
    EXPECT_THAT(refusal.what(), testing::HasSubstr(", Function: vx::tarn::common::utils::escapeUrl,"));
}
