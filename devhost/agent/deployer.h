#pragma once

#include "agent/deployscript.h"
#include "agent/installationlog.h"
#include "common/patchstorage/ipatchstorage.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace vx::tarn::common {
class IDeploymentQueue;
}

namespace devhost::agent {

/// Installs, as a script says, what the deployment queue asks for. One thread. Throws what the settings throw.
class Deployer {
public:
    Deployer(std::shared_ptr<vx::settings::Settings> settings,
        std::shared_ptr<vx::tarn::common::IDeploymentQueue> queue,
        std::shared_ptr<vx::tarn::common::IPatchStorage> storage);

    /// Blocks for as long as the states and pauses last. Without an item in the queue nothing happens.
    void deploy(const DeployScript& script);

private:
    using Patches = std::vector<vx::tarn::common::PatchInfo>;

    std::size_t takeItems(const DeployScript& script);
    Patches findPatches(const std::wstring& descriptor) const;
    void walkThrough(const Patches& patches, const DeployScript& script) const;
    void leaveForReboot(vx::tarn::ValueItem state) const;
    void answerRequest(vx::tarn::ResultItem result) const;

    std::shared_ptr<vx::settings::Settings> m_settings;
    std::shared_ptr<vx::tarn::common::IDeploymentQueue> m_queue;
    std::shared_ptr<vx::tarn::common::IPatchStorage> m_storage;
    vx::tarn::TarnpatchSettings m_tarnpatchSettings;
    vx::tarn::TarnpatchStatus m_tarnpatchStatus;
    InstallationLog m_log;
    Patches m_handled; ///< in the present run
};

} // namespace devhost::agent
