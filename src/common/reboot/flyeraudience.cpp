#include "common/reboot/flyeraudience.h"

namespace vx::tarn::common {

bool isSessionTold(ShowFlyerPolicyItem policy, const std::function<bool()>& isAdmin)
{
    switch (policy) {
    case ShowFlyerPolicyItem::AdminUsers: return isAdmin();
    case ShowFlyerPolicyItem::Nobody: return false;
    default: return true;
    }
}

} // namespace vx::tarn::common
