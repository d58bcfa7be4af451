#include "common/syncfolders.h"
#include "common/directories.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>

namespace vx::tarn::common {
namespace {

namespace fs = std::filesystem;

class SyncFoldersTest : public testing::Test {
protected:
    SyncFoldersTest() { fs::remove_all(m_root); }
    ~SyncFoldersTest() override { fs::remove_all(m_root); }

    const fs::path m_root = fs::temp_directory_path() / "SyncFoldersTest";
};

TEST_F(SyncFoldersTest, makesFoldersOnDemandAndNamesFiles)
{
    SyncFolders folders(m_root.wstring());
    const fs::path root = m_root / L"Vantorix\\tarn2";
    EXPECT_EQ(folders.getPackageFile(), root / L"working\\package.zip");
    EXPECT_EQ(folders.getWindowsPatchDataFile(), root / L"working\\WindowsPatchData.zip");
    EXPECT_EQ(folders.getDeployerExecutable(), root / L"working\\stDeploy.exe");
    EXPECT_FALSE(fs::exists(m_root));
    EXPECT_EQ(folders.getTempFolder(), root / L"temp");
    EXPECT_TRUE(fs::is_directory(root / L"temp"));
    EXPECT_FALSE(fs::exists(root / L"working"));
    EXPECT_EQ(folders.getPatchesFolder(), root / L"working\\deployer\\Patches");
    EXPECT_TRUE(fs::is_directory(root / L"working\\deployer\\Patches"));
    EXPECT_EQ(folders.getWorkingFolder(), root / L"working");
    EXPECT_EQ(folders.getDeploymentFolder(), root / L"working");
    EXPECT_EQ(folders.getTempFolder(), root / L"temp");
}

TEST_F(SyncFoldersTest, keepsLogsInTheSystemsFolder)
{
    const fs::path logs = fs::path(getCommonAppDataFolder()) / L"Vantorix\\Log\\tarn";
    EXPECT_EQ(SyncFolders(m_root.wstring()).getLogFolder(), logs);
    EXPECT_TRUE(fs::is_directory(logs));
    const std::wstring data = SyncFolders().getWindowsPatchDataFile();
    EXPECT_EQ(data, getCommonAppDataFolder() + L"\\Vantorix\\tarn2\\working\\WindowsPatchData.zip");
}

TEST_F(SyncFoldersTest, givesThePathOfAFolderThatCannotBeMade)
{
    support::LogCapture log;
    std::ofstream(m_root).put('x');
    EXPECT_EQ(SyncFolders(m_root.wstring()).getTempFolder(), m_root / L"Vantorix\\tarn2\\temp");
    EXPECT_EQ(log.count("Failed to create directories: "), 1u) << log.text();
    EXPECT_EQ(log.count("\\Vantorix\\tarn2\\temp. Error code: "), 1u) << log.text();
}

} // namespace
} // namespace vx::tarn::common
