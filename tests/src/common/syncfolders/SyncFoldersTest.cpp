#include "common/syncfolders/syncfolders.h"
#include "common/syncfolders/directories.h"
#include "support/logcapture.h"

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
    EXPECT_EQ(folders.getWindowsPatchDataFile(), root / L"working\\WindowsPatchData.zip");
    EXPECT_EQ(folders.getDeployerExecutable(), root / L"working\\stDeploy.exe");
    EXPECT_FALSE(fs::exists(data));
    EXPECT_EQ(folders.getTempFolder(), root / L"temp");
    EXPECT_TRUE(fs::is_directory(root / L"temp"));
    EXPECT_FALSE(fs::exists(root / L"working"));
    EXPECT_EQ(folders.getPatchesFolder(), root / L"working\\deployer\\Patches");
    EXPECT_TRUE(fs::is_directory(root / L"working\\deployer\\Patches"));
    EXPECT_EQ(folders.getWorkingFolder(), root / L"working");
    EXPECT_EQ(folders.getDeploymentFolder(), root / L"working");
    EXPECT_EQ(folders.getLogFolder(), getCommonAppDataFolder() + L"\\Vantorix\\Log\\tarn");
    EXPECT_EQ(SyncFolders().getPackageFile(), getCommonAppDataFolder() + L"\\Vantorix\\tarn2\\working\\package.zip");
}

TEST_F(SyncFoldersTest, givesThePathOfAFolderThatCannotBeMade)
{
    support::LogCapture log;
    std::ofstream(data).put('x');
    EXPECT_EQ(folders.getTempFolder(), root / L"temp");
    EXPECT_EQ(log.count("Failed to create directories: "), 1u) << log.text();
    EXPECT_EQ(log.count("\\Vantorix\\tarn2\\temp. Error code: "), 1u) << log.text();
}
