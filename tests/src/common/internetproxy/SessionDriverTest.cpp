#include "common/internetproxy/sessiondriver.h"
#include "common/internetproxy/nointernetproxy.h"
#include "support/logcapture.h"

#include <windows.h>

#include <wininet.h>

using namespace vx::tarn::common;

TEST(SessionDriver, opensSessionsThatKnowTheirProxy)
{
    for (const auto& address : {std::optional<std::wstring>(), std::optional<std::wstring>(L"http://127.0.0.1:1")}) {
        const std::shared_ptr<void> session(SessionDriver().open(L"UA", address), InternetCloseHandle);
        struct {
            INTERNET_PROXY_INFO info;
            wchar_t texts[256];
        } answer = {};
        DWORD size = sizeof(answer);
        ASSERT_TRUE(InternetQueryOptionW(session.get(), INTERNET_OPTION_PROXY, &answer, &size));
        EXPECT_EQ(answer.info.dwAccessType == INTERNET_OPEN_TYPE_PROXY, address.has_value());
        if (address) {
            EXPECT_EQ(std::wstring(reinterpret_cast<const wchar_t*>(answer.info.lpszProxy)), *address);
        }
    }
}

TEST(SessionDriver, letsASessionIgnoreCertificateErrors)
{
    const support::LogCapture log;
    NoInternetProxy proxy(std::make_shared<SessionDriver>(), true);
    const std::shared_ptr<void> session(proxy.openInternetConnection(L"UA", L"https://server/"), InternetCloseHandle);
    EXPECT_NE(session, nullptr);
    EXPECT_EQ(log.text(), "");
}
