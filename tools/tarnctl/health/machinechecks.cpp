#include "tarnctl/health/rows.h"

#include <algorithm>

namespace tarnctl::health {

namespace {

// Longer than any scan or download that goes well.
constexpr std::int64_t longestRun = 6 * secondsPerHour;

} // namespace

Said checkPlugin(const Facts& facts)
{
    if (!facts.pluginProcesses.isKnown())
        return noMachineValue(facts.pluginProcesses);
    const auto count = facts.pluginProcesses->size();
    if (count == 0)
        return finding("no process has tarnhd.dll loaded", "start the host's service; its log tells why a load fails");
    if (count > 1)
        return finding(std::to_string(count) + " processes have tarnhd.dll loaded",
            "only one may serve this machine: stop the others");
    return good("one process has tarnhd.dll loaded");
}

Said checkAgentProgram(const Facts& facts)
{
    if (!facts.agentProgram.isKnown())
        return noValue(facts.agentProgram, "run as administrator", "repair the installation: no scan can run");
    return good(*facts.agentProgram);
}

Said checkAgentRun(const Facts& facts)
{
    if (!facts.agentRunSeconds.isKnown())
        return noMachineValue(facts.agentRunSeconds);
    const auto& runs = *facts.agentRunSeconds;
    if (runs.empty())
        return good("no agent is at work");
    // An unknown age is less than any.
    const auto longest = *std::max_element(runs.begin(), runs.end());
    const auto count = std::to_string(runs.size()) + " at work";
    if (longest > longestRun)
        return finding(
            count + ", the longest begun " + ago(*longest), "it hangs: no other start can begin before it ends");
    if (std::count(runs.begin(), runs.end(), std::nullopt) > 0)
        return {Grade::Unreadable, count + ", but since when may not be asked", "run as administrator"};
    return good(count + ", the longest begun " + ago(*longest));
}

Said checkTask(const Facts& facts)
{
    if (!facts.task.isKnown())
        return noValue(facts.task, "see whether the store answers and the Task Scheduler's service runs",
            "write a value that the key may have: tarnctl keys tells its type");
    if (facts.task->wanted != facts.task->exists)
        return finding(facts.task->wanted ? "wanted, but not there" : "there, but not wanted",
            "any change of its settings makes the plug-in update it; its log names the call that failed");
    if (!facts.task->difference.empty())
        return finding(facts.task->difference, "any change of its settings makes the plug-in update it");
    return good(facts.task->wanted ? "as the settings ask for" : "not wanted, and not there");
}

Said checkService(const Facts& facts)
{
    if (!facts.stopRequest.isKnown())
        return noMachineValue(facts.stopRequest);
    const auto& request = *facts.stopRequest;
    if (!request.isThere)
        return good("nobody asks for its stop");
    if (request.serviceRuns)
        return finding("runs, although it is to be stopped", "the plug-in stops it every 20 seconds: see that it runs");
    return good("stopped, as asked for");
}

Said checkReboot(const Facts& facts)
{
    if (!facts.rebootDue.isKnown())
        return noMachineValue(facts.rebootDue);
    const auto& due = *facts.rebootDue;
    if (!due)
        return good("none is forced");
    // The plug-in looks every 20 seconds.
    if (facts.now > *due + underWay)
        return finding("was due " + ago(facts.now - *due), "tarnctl why reboot tells what the plug-in tried");
    return good(facts.now > *due ? "due now" : "due in " + std::to_string((*due - facts.now) / 60) + " minutes");
}

Said checkUpdates(const Facts& facts)
{
    if (!facts.updates.isKnown())
        return noMachineValue(facts.updates);
    if (!facts.updates->isPaused)
        return good(facts.updates->isOff ? "switched off, but by no deployment" : "not paused");
    if (isAgentAtWork(facts) || isRebootAwaited(facts))
        return good("paused for a deployment");
    if (!facts.agentRunSeconds.isKnown())
        return noMachineValue(facts.agentRunSeconds);
    return finding("paused, with no agent at work", "the next agent run resumes them");
}

} // namespace tarnctl::health
