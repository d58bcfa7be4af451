#include "common/syncfolders/syncfolders.h"

#include "common/syncfolders/directories.h"

namespace vx::tarn::common {

namespace {

const std::wstring& created(const std::wstring& path)
{
    createDirectories(path);
    return path;
}

} // namespace

SyncFolders::SyncFolders(const std::wstring& commonAppData)
{
    const std::wstring systemFolder = getCommonAppDataFolder();
    m_root = (commonAppData.empty() ? systemFolder : commonAppData) + L"\\Vantorix\\tarn2";
    m_temp = m_root + L"\\temp";
    m_working = m_root + L"\\working";
    m_deployment = m_working;
    m_patches = m_working + L"\\deployer\\Patches";
    m_logs = systemFolder + L"\\Vantorix\\Log\\tarn";
}

std::wstring SyncFolders::getTempFolder()
{
    return created(m_temp);
}

std::wstring SyncFolders::getWorkingFolder()
{
    return created(m_working);
}

std::wstring SyncFolders::getDeploymentFolder()
{
    return created(m_deployment);
}

std::wstring SyncFolders::getPatchesFolder()
{
    return created(m_patches);
}

std::wstring SyncFolders::getLogFolder()
{
    return created(m_logs);
}

std::wstring SyncFolders::getWindowsPatchDataFile()
{
    return m_working + L"\\WindowsPatchData.zip";
}

std::wstring SyncFolders::getPackageFile()
{
    return m_deployment + L"\\package.zip";
}

std::wstring SyncFolders::getDeployerExecutable()
{
    return m_working + L"\\stDeploy.exe";
}

} // namespace vx::tarn::common
