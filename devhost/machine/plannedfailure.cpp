#include "machine/plannedfailure.h"

#include "machine/machinefile.h"

#include <algorithm>
#include <array>

namespace devhost::machine {

namespace {

constexpr std::array owners = std::to_array<std::string_view>({"TaskScheduler", "ITaskService", "ITaskFolder",
    "IRegisteredTaskCollection", "IRegisteredTask", "ITaskDefinition", "IRegistrationInfo", "IPrincipal",
    "ITaskSettings", "ITriggerCollection", "ITrigger", "IDailyTrigger", "IWeeklyTrigger", "IActionCollection",
    "IAction", "IExecAction", "AutomaticUpdates", "IAutomaticUpdates", "IAutomaticUpdates2", "IAutomaticUpdatesResults",
    "GroupPolicyObject", "IGroupPolicyObject", "QRLIPC", "VxAlertApi", "VxFlyer"});

auto findFor(std::string_view call, MachineState& state)
{
    return std::ranges::find(state.plannedFailures, call, &PlannedFailure::call);
}

} // namespace

std::optional<std::int32_t> takePlannedFailure(std::string_view call)
{
    // The usual case must not cost the reading of a file.
    if (std::error_code ignored; !std::filesystem::exists(machineFile(), ignored))
        return std::nullopt;
    std::optional<std::int32_t> result;
    changeState([&](MachineState& state) {
        const auto planned = findFor(call, state);
        if (planned == state.plannedFailures.end())
            return;
        result = planned->result;
        if (planned->count > 1)
            --planned->count;
        else
            state.plannedFailures.erase(planned);
    });
    return result;
}

bool isCall(std::string_view call)
{
    const auto separator = call.find("::");
    return separator != call.npos && separator + 2 < call.size() &&
           std::ranges::find(owners, call.substr(0, separator)) != owners.end();
}

} // namespace devhost::machine
