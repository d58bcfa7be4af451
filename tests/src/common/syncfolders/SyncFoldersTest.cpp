#include "common/syncfolders/syncfolders.h"
#include "common/syncfolders/directories.h"
#include "common/utils/folders.h"
#include "support/logcapture.h"
#include "vxtl/registry.h"

#include <filesystem>
#include <fstream>

using namespace vx::tarn::common;
namespace fs = std::filesystem;

namespace {

struct SyncFoldersTest : testing::Test {
    SyncFoldersTest() { fs::remove_all(data); }
    ~SyncFoldersTest() override { fs::remove_all(data); }

    const fs::path data = fs::temp_directory_path() / "SyncFoldersTest";
    const fs::path root = data / L"Vantorix\\tarn2";
    SyncFolders folders{data.wstring()};
};

} // namespace

TEST_F(SyncFoldersTest, makesFoldersOnDemandAndNamesFiles)
{
    EXPECT_EQ(folders.getPackageFile(), root / L"working\\package.zip");
    EXPECT_FALSE(fs::exists(data));
    EXPECT_EQ(folders.getTempFolder(), root / L"temp");
    EXPECT_TRUE(fs::is_directory(root / L"temp"));
    EXPECT_FALSE(fs::exists(root / L"working"));
    EXPECT_EQ(folders.getPatchesFolder(), root / L"working\\deployer\\Patches");
    EXPECT_TRUE(fs::is_directory(root / L"working\\deployer\\Patches"));
    EXPECT_EQ(folders.getLogFolder(), getCommonAppDataFolder() + L"\\Vantorix\\Log\\tarn");
    EXPECT_EQ(SyncFolders().getPackageFile(), getCommonAppDataFolder() + L"\\Vantorix\\tarn2\\working\\package.zip");
}

TEST_F(SyncFoldersTest, givesThePathOfAFolderThatCannotBeMade)
{
    support::LogCapture log;
    std::ofstream(data).put('x');
    EXPECT_EQ(folders.getTempFolder(), root / L"temp");
    EXPECT_EQ(log.count("\\Vantorix\\tarn2\\temp. Error code: "), 1u) << log.text();
}

TEST(Folders, comeFromTheSystemAndTheRegistry)
{
    constexpr const wchar_t* keyName = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn";
    EXPECT_TRUE(utils::getSystemFolder().ends_with(L"\\system32"));
    support::LogCapture log;
    EXPECT_EQ(utils::getInstallationPath(nullptr), L"");
    const auto registry = vx::registry::createWin32Registry();
    const auto key = registry->createKey(keyName);
    key->setStringValue(L"InstallationDirectory", L"C:\\product");
    EXPECT_EQ(utils::getInstallationPath(registry), L"C:\\product");
    key->setInt32Value(L"InstallationDirectory", 1);
    EXPECT_EQ(utils::getInstallationPath(registry), L"");
    registry->deleteTree(keyName);
    EXPECT_EQ(utils::getInstallationPath(registry), L"");
    EXPECT_EQ(log.count("Failed to get installation path. Exception caught: Type: "), 2u) << log.text();
}
