#include "common/internetproxy/sessiondriver.h"
#include "common/internetproxy/nointernetproxy.h"
#include "support/logcapture.h"

#include <windows.h>

#include <wininet.h>

using namespace vx::tarn::common;

TEST(SessionDriver, letsASessionIgnoreCertificateErrors)
{
    const support::LogCapture log;
    NoInternetProxy proxy(std::make_shared<SessionDriver>(), true);
    const std::shared_ptr<void> session(proxy.openInternetConnection(L"UA", L"https://server/"), InternetCloseHandle);
    EXPECT_NE(session, nullptr);
    EXPECT_EQ(log.text(), "");
}
