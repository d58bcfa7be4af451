#pragma once

#include "common/syncfolders/isyncfolders.h"

#include <string>

namespace vx::tarn::common {

/// The folders below the system's common application data. Paths are fixed at construction.
class SyncFolders final : public ISyncFolders {
public:
    /// `commonAppData`, unless empty, stands for the system's folder; not for the logs.
    explicit SyncFolders(const std::wstring& commonAppData = {});

    std::wstring getTempFolder() override;
    std::wstring getWorkingFolder() override;
    std::wstring getDeploymentFolder() override;
    std::wstring getPatchesFolder() override;
    std::wstring getLogFolder() override;
    std::wstring getWindowsPatchDataFile() override;
    std::wstring getPackageFile() override;
    std::wstring getDeployerExecutable() override;

private:
    std::wstring m_root;
    std::wstring m_temp;
    std::wstring m_working;
    std::wstring m_deployment;
    std::wstring m_patches;
    std::wstring m_logs;
};

} // namespace vx::tarn::common
