#include "common/windowsupdates/windowsupdatesstate.h"

#include <ostream>

namespace vx::tarn::common {

bool WindowsUpdatesState::isComplete() const noexcept
{
    return noAutoUpdate && auOptions && scheduledInstallDay && scheduledInstallTime;
}

std::ostream& operator<<(std::ostream& stream, const WindowsUpdatesState& state)
{
    return stream << "noAU: " << state.noAutoUpdate.value_or(-1) << ", auOptions: " << state.auOptions.value_or(-1)
                  << ", scheduledInstallDay: " << state.scheduledInstallDay.value_or(-1)
                  << ", scheduledInstallTime: " << state.scheduledInstallTime.value_or(-1);
}

} // namespace vx::tarn::common
