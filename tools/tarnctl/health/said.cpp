#include "tarnctl/health/said.h"

namespace tarnctl::health {

Said good(std::string evidence)
{
    return {Grade::Good, std::move(evidence), {}};
}
Said finding(std::string evidence, std::string advice)
{
    return {Grade::Finding, std::move(evidence), std::move(advice)};
}

std::string ago(std::int64_t seconds)
{
    if (seconds < 0)
        return "in the future";
    if (seconds < 2 * secondsPerHour)
        return std::to_string(seconds / 60) + " minutes ago";
    return std::to_string(seconds / secondsPerHour) + " hours ago";
}

bool isPluginThere(const Facts& facts)
{
    return facts.pluginProcesses.isKnown() && !facts.pluginProcesses->empty();
}

bool isAgentAtWork(const Facts& facts)
{
    return facts.agentRunSeconds.isKnown() && !facts.agentRunSeconds->empty();
}

bool isRebootAwaited(const Facts& facts)
{
    return facts.completion.isKnown() && facts.completion->wait;
}

} // namespace tarnctl::health
