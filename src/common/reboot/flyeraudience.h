#pragma once

#include "common/settings/settingsenumerations.h"

#include <functional>

namespace vx::tarn::common {

/// Whether a session is told of a reboot. `isAdmin` looks at the session's user, and is called only where the policy
/// depends on that.
bool isSessionTold(ShowFlyerPolicyItem policy, const std::function<bool()>& isAdmin);

} // namespace vx::tarn::common
