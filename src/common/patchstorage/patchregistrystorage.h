#pragma once

#include "common/patchstorage/ipatchstorage.h"

#include <memory>
#include <string>

namespace vx::registry {
class Registry;
class RegistryKey;
} // namespace vx::registry

namespace vx::tarn::common {

/// The storage in HKEY_LOCAL_MACHINE\Software\Vantorix\tarn\PatchStorage. The key is opened, or made, at
/// the first need and kept.
class PatchRegistryStorage : public IPatchStorage {
public:
    PatchRegistryStorage(std::wstring finishedValueName, std::wstring patchesValueName, std::wstring statusesValueName,
        std::shared_ptr<registry::Registry> registry);

    bool clear() override;
    bool savePatches(const PatchMap& patches) override;
    bool loadPatches(PatchMap& patches, std::vector<ReportEvent>& statuses) override;
    bool addPatchState(const ReportEvent& event) override;
    bool reportInstallationFinished(bool finished) override;
    bool isInstallationFinished() override;
    bool hasPatchStates() override;

private:
    registry::RegistryKey& key();

    std::wstring m_finishedValueName;
    std::wstring m_patchesValueName;
    std::wstring m_statusesValueName;
    std::shared_ptr<registry::Registry> m_registry;
    std::shared_ptr<registry::RegistryKey> m_key; ///< empty until first needed
};

} // namespace vx::tarn::common
