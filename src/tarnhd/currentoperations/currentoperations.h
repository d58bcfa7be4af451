#pragma once

#include "common/patches/patchinfo.h"
#include "common/patches/patchrecords.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vx::settings {
class Settings;
}
namespace vx::tarn::common {
class OperationInfo;
}

namespace vx::tarn {

/// Makes the published list of patches out of the deployment queue, the missing updates of the last scan
/// and the installation log. Has no state: the result depends only on the store. One thread.
class CurrentOperations {
public:
    explicit CurrentOperations(std::shared_ptr<settings::Settings> settingsHandle);
    virtual ~CurrentOperations();
    CurrentOperations(const CurrentOperations&) = delete;
    CurrentOperations& operator=(const CurrentOperations&) = delete;

    /// Reads the three lists and writes the result, also an unchanged or empty one. Throws the store's
    /// exceptions, the JSON library's type errors and std::invalid_argument.
    virtual void update();

private:
    /// The installation log by update_id; of several entries the one nearest the front.
    using LogIndex = std::unordered_map<std::wstring_view, const common::LoggedState*>;

    /// A missing update as filters see it, with what the log is searched for.
    struct MissingPatch {
        common::ListedPatch patch;
        std::wstring updateId;
    };

    static LogIndex indexOf(const std::vector<common::LoggedState>& log);
    static std::vector<common::LoggedState> getLog(nlohmann::json entries);
    /// The patches with what identifies them and what filters look at. Also brings the elements into the form in
    /// which their patches are written.
    std::vector<MissingPatch> getMissingUpdates(nlohmann::json& missingUpdates) const;
    std::vector<common::OperationInfo> getApplicableFilters(
        const std::vector<common::DeploymentItem>& deploymentItems) const;
    bool getStatusForUpdate(const std::wstring& updateId, const LogIndex& log, const common::LoggedState*& entry) const;

    std::shared_ptr<settings::Settings> m_settingsHandle;
    TarnpatchSettings m_settings;
    TarnpatchStatus m_status;
};

} // namespace vx::tarn
