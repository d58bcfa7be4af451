#include "common/internetproxy/sessiondriver.h"
#include "common/internetproxy/autoproxydriver.h"
#include "common/internetproxy/nointernetproxy.h"
#include "support/logcapture.h"

#include <windows.h>

#include <wininet.h>

using namespace vx::tarn::common;

namespace {

std::shared_ptr<void> session(void* handle)
{
    return {handle, [](void* opened) {
                if (opened)
                    InternetCloseHandle(opened);
            }};
}

} // namespace

TEST(SessionDriver, opensSessionsThatKnowTheirProxy)
{
    SessionDriver driver;
    for (const auto& address : {std::optional<std::wstring>(), std::optional<std::wstring>(L"http://127.0.0.1:1")}) {
        const auto opened = session(driver.open(L"UA", address));
        ASSERT_NE(opened, nullptr) << driver.lastError();
        struct {
            INTERNET_PROXY_INFO info;
            wchar_t texts[256];
        } answer = {};
        DWORD size = sizeof(answer);
        ASSERT_TRUE(InternetQueryOptionW(opened.get(), INTERNET_OPTION_PROXY, &answer, &size));
        EXPECT_EQ(answer.info.dwAccessType == INTERNET_OPEN_TYPE_PROXY, address.has_value());
        if (address) {
            EXPECT_EQ(std::wstring(reinterpret_cast<const wchar_t*>(answer.info.lpszProxy)), *address);
        }
    }
}

// Wine has these options for connections only.
TEST(SessionDriver, takesCredentialsWhereTheSystemDoes)
{
    SessionDriver driver;
    const auto opened = session(driver.open(L"UA", L"http://127.0.0.1:1"));
    EXPECT_TRUE(driver.setProxyUser(opened.get(), L"user") || driver.lastError() == ERROR_INTERNET_INVALID_OPTION);
    EXPECT_TRUE(driver.setProxyPassword(opened.get(), L"pw") || driver.lastError() == ERROR_INTERNET_INVALID_OPTION);
}

TEST(SessionDriver, letsASessionIgnoreCertificateErrors)
{
    const support::LogCapture log;
    NoInternetProxy proxy(std::make_shared<SessionDriver>(), true);
    const auto opened = session(proxy.openInternetConnection(L"UA", L"https://127.0.0.1/"));
    EXPECT_NE(opened, nullptr);
    EXPECT_EQ(log.text(), "");
}

TEST(AutoProxyDriver, answersOnANetworkThatNamesNoProxy)
{
    const auto answer = AutoProxyDriver().detect(L"http://127.0.0.1/");
    if (const auto* failure = std::get_if<DetectionFailure>(&answer)) {
        EXPECT_EQ(failure->step, DetectionFailure::Step::GetProxy);
        EXPECT_NE(failure->error, 0u);
    }
}
