#include "common/internetproxy/proxyinfo.h"
#include "support/logcapture.h"

#include <stdexcept>

using vx::tarn::common::ProxyInfo;
using enum ProxyInfo::Passwords;

TEST(ProxyInfo, readsEachFieldByTheFirstPlaceOfItsSeparator)
{
    const struct {
        const wchar_t* text;
        ProxyInfo expected;
    } rows[] = {
        {L"", {}},
        {L"host", {L"http", 8080, L"host", L"", L""}},
        {L"host:3128/x", {L"http", 3128, L"host", L"", L""}},
        {L"user:pw@host", {L"http", 8080, L"host", L"user", L"pw"}},
        {L"https://a:b@host:1", {L"https", 1, L"host", L"a", L"b"}},
        {L"user@host:7", {L"http", 7, L"host", L"user", L""}},
        {L"user:p:w@host", {L"http", 8080, L"host", L"user", L"p:w"}},
        {L":pw@host", {L"http", 8080, L"host", L"", L"pw"}},
        {L"user:p@w@host:1", {L"http", 1, L"w@host", L"user", L"p"}},
        {L"a@b:5://host", {L"a@b:5", 5, L"b", L"", L""}},
        {L"host:65537", {L"http", 1, L"host", L"", L""}},
        {L"host:-1", {L"http", 65535, L"host", L"", L""}},
        {L"https://a:b@host:", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ProxyInfo::parse(row.text), row.expected) << testing::PrintToString(row.text);
    EXPECT_THROW(ProxyInfo::parse(L"host:2147483648"), std::out_of_range);
}

TEST(ProxyInfo, isWrittenWithItsPasswordOnlyWhenThatIsWanted)
{
    const auto proxy = ProxyInfo::parse(L"https://user:pw@host:1");
    EXPECT_EQ(proxy.toString(Shown), L"https://user:pw@host:1");
    EXPECT_EQ(proxy.toString(Hidden), L"https://user:<password>@host:1");
    EXPECT_EQ(proxy.toStringAddress(), L"https://host:1");
    EXPECT_EQ(ProxyInfo::parse(L"user@host").toString(Hidden), L"http://user@host:8080");
    EXPECT_EQ(ProxyInfo::parse(L":pw@host").toString(Shown), L"http://host:8080");
}

// By parsing, these are no passwords or only half of them; by whoever wrote the setting, they are.
TEST(ProxyInfo, showsNoPieceOfAPasswordThatHoldsSeparators)
{
    for (const wchar_t* text : {L"user:a@secret@host:1", L"user:a@b@secret@host:1", L"user:secret://a@host:1",
             L"user:a://secret@host:1", L"user:a@b:secret@host", L"user:a@secret:1@host", L"user:a@b:1secret@host"}) {
        const support::LogCapture log;
        EXPECT_EQ(ProxyInfo::parse(text).toString(Hidden).find(L"secret"), std::wstring::npos)
            << testing::PrintToString(text);
        EXPECT_EQ(log.count("secret"), 0u) << log.text();
    }
    EXPECT_EQ(ProxyInfo::parse(L"user:a@b:47@host").toString(Hidden), L"http://user:<password>@<password>:0");
    const support::LogCapture log;
    ProxyInfo::parse(L"host:abc");
    EXPECT_TRUE(log.has(2, "Failed to parse proxy port: 'abc'. Reason: invalid stoi argument")) << log.text();
}
