#pragma once

#include "common/patchinfo.h"
#include "common/reportevent.h"

#include <cstdint>
#include <map>
#include <vector>

namespace vx::tarn::common {

/// Patches by the agent's number.
using PatchMap = std::map<std::int64_t, PatchInfo>;

/// The state of a deployment that survives a reboot. Registry failures are log lines and false. One thread.
class IPatchStorage {
public:
    virtual ~IPatchStorage() = default;
    virtual bool clear() = 0;
    /// Clears everything first, an old finished flag too. Throws what deriving an update_id throws.
    virtual bool savePatches(const PatchMap& patches) = 0;
    /// False when either value is missing or unreadable; `patches` then holds what was read before the
    /// failure. A member name that is no number throws std::invalid_argument or std::out_of_range.
    virtual bool loadPatches(PatchMap& patches, std::vector<ReportEvent>& statuses) = 0;
    /// Throws the JSON library's parse error on stored text that is no JSON.
    virtual bool addPatchState(const ReportEvent& event) = 0;
    virtual bool reportInstallationFinished(bool finished) = 0;
    virtual bool isInstallationFinished() = 0;
    /// Whether events were ever added; what they hold is not looked at.
    virtual bool hasPatchStates() = 0;
};

} // namespace vx::tarn::common
