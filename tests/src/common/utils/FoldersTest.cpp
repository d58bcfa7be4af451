#include "common/folders.h"
#include "support/logcapture.h"
#include "vxtl/registry.h"

#include <gtest/gtest.h>

namespace vx::tarn::common::utils {
namespace {

constexpr const wchar_t* keyName = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn";

TEST(Folders, comeFromTheSystem)
{
    const std::wstring folder = getSystemFolder();
    EXPECT_TRUE(folder.ends_with(L"\\system32")) << testing::PrintToString(folder);
}

TEST(Folders, installationPathComesFromTheRegistry)
{
    const auto registry = registry::createWin32Registry();
    registry->createKey(keyName)->setStringValue(L"InstallationDirectory", L"C:\\product");
    EXPECT_EQ(getInstallationPath(registry), L"C:\\product");
    registry->deleteTree(keyName);
}

TEST(Folders, missingInstallationPathIsLogged)
{
    support::LogCapture log;
    const auto registry = registry::createWin32Registry();
    EXPECT_EQ(getInstallationPath(nullptr), L"");
    EXPECT_TRUE(log.has(2, "Invalid registry argument.")) << log.text();
    registry->createKey(keyName)->setInt32Value(L"InstallationDirectory", 1);
    EXPECT_EQ(getInstallationPath(registry), L"");
    registry->deleteTree(keyName);
    EXPECT_EQ(getInstallationPath(registry), L"");
    EXPECT_EQ(log.count("Failed to get installation path. Exception caught: Type: "), 2u) << log.text();
}

} // namespace
} // namespace vx::tarn::common::utils
