#include "common/utils/folders.h"
#include "support/logcapture.h"
#include "vxtl/registry.h"

using namespace vx;
using tarn::common::utils::getInstallationPath;

TEST(Folders, comeFromTheSystemAndTheRegistry)
{
    constexpr const wchar_t* keyName = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn";
    EXPECT_TRUE(tarn::common::utils::getSystemFolder().ends_with(L"\\system32"));
    support::LogCapture log;
    EXPECT_EQ(getInstallationPath(nullptr), L"");
    const auto registry = registry::createWin32Registry();
    const auto key = registry->createKey(keyName);
    key->setStringValue(L"InstallationDirectory", L"C:\\product");
    EXPECT_EQ(getInstallationPath(registry), L"C:\\product");
    key->setInt32Value(L"InstallationDirectory", 1);
    EXPECT_EQ(getInstallationPath(registry), L"");
    registry->deleteTree(keyName);
    EXPECT_EQ(getInstallationPath(registry), L"");
    EXPECT_EQ(log.count("Failed to get installation path. Exception caught: Type: "), 2u) << log.text();
}
