#include "tarnctl/health/obstacles.h"

namespace tarnctl::health {

std::vector<std::string> obstacles(const Facts& facts)
{
    std::vector<std::string> lines;
    if (!facts.storeTrouble.empty())
        lines.push_back("the store can't be read: " + facts.storeTrouble);
    if (facts.pluginProcesses.isKnown() && facts.pluginProcesses->empty())
        lines.push_back("no process has the plug-in loaded");
    if (!facts.agentProgram.isKnown())
        lines.push_back(
            (facts.agentProgram.isWrong ? "there is no agent to start: " : "the agent can't be looked for: ") +
            facts.agentProgram.trouble);
    if (facts.enabledOn.isKnown() && !*facts.enabledOn)
        lines.push_back("the feature is off");
    if (facts.profileTime.isKnown() && *facts.profileTime <= 0)
        lines.push_back("the plug-in waits for the store's profile");
    if (facts.completion.isKnown() && facts.completion->wait)
        lines.push_back("a deployment is waited for, and no agent starts before it is over");
    return lines;
}

} // namespace tarnctl::health
