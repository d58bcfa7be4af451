#pragma once

#include "common/patches/patchinfo.h"
#include "common/reportevents/reportevent.h"

#include <cstdint>
#include <map>
#include <vector>

namespace vx::tarn::common {

/// Patches by the agent's number.
using PatchMap = std::map<std::int64_t, PatchInfo>;

/// The state of a deployment that survives a reboot. What fails with an exception of the tree, as the registry does,
/// is a log line and false. One thread.
class IPatchStorage {
public:
    virtual ~IPatchStorage() = default;
    virtual bool clear() = 0;
    /// Clears everything first, an old finished flag too. False, with nothing saved, also for a patch without the
    /// texts that an update_id is derived from.
    virtual bool savePatches(const PatchMap& patches) = 0;
    /// False when a value is missing, and neither argument is touched then, or when one is unreadable: `patches` holds
    /// what was read before the failure. A member name that is no number throws std::invalid_argument or
    /// std::out_of_range, a bad GUID in an event std::runtime_error.
    virtual bool loadPatches(PatchMap& patches, std::vector<ReportEvent>& statuses) = 0;
    /// Throws the JSON library's parse error on stored text that is no JSON.
    virtual bool addPatchState(const ReportEvent& event) = 0;
    virtual bool reportInstallationFinished(bool finished) = 0;
    virtual bool isInstallationFinished() = 0;
    /// Whether the value of the events is there; what it holds is not looked at.
    virtual bool hasPatchStates() = 0;
};

} // namespace vx::tarn::common
