#include "tarnctl/why/conditions.h"

namespace tarnctl::why {

using health::Fact;
using health::Facts;

namespace {

constexpr std::int64_t hour = 3600;

bool isTrue(const Fact<bool>& fact)
{
    return fact.isKnown() && *fact;
}

std::string inMinutes(std::int64_t seconds)
{
    return seconds <= 0 ? "now" : "in " + std::to_string((seconds + 59) / 60) + " minutes";
}

/// What keeps every start of the agent.
void addObstacles(std::vector<std::string>& lines, const Facts& facts)
{
    if (!facts.storeTrouble.empty())
        lines.push_back("the store can't be read: " + facts.storeTrouble);
    if (facts.pluginProcesses.isKnown() && *facts.pluginProcesses == 0)
        lines.push_back("no process has the plug-in loaded");
    if (!facts.agentProgram.isKnown())
        lines.push_back("there is no agent to start: " + facts.agentProgram.trouble);
    if (facts.enabledOn.isKnown() && !isTrue(facts.enabledOn))
        lines.push_back("the feature is off");
    if (facts.profileTime.isKnown() && *facts.profileTime <= 0)
        lines.push_back("the plug-in waits for the store's profile");
    if (facts.completion.isKnown() && facts.completion->wait)
        lines.push_back("a deployment is waited for, and no agent starts before it is over");
}

void addScan(std::vector<std::string>& lines, const Facts& facts)
{
    if (facts.scan.isKnown() && facts.scan->isOpen())
        lines.push_back("request " + std::to_string(facts.scan->start) + " is open");
    if (facts.lastScan.isKnown() && facts.scanPeriodHours.isKnown())
        lines.push_back("without a request the next scan is due " +
                        inMinutes(*facts.lastScan + *facts.scanPeriodHours * hour - facts.now) +
                        ", at the plug-in's next look at what is due");
}

void addInstallation(std::vector<std::string>& lines, const Facts& facts)
{
    if (facts.installation.isKnown() && facts.installation->isOpen())
        lines.push_back("request " + std::to_string(facts.installation->start) + " is open");
    if (facts.queued.isKnown())
        lines.push_back(*facts.queued == 0 ? "the deployment queue is empty"
                                           : std::to_string(*facts.queued) + " items wait in the deployment queue");
    if (facts.task.isKnown())
        lines.push_back(
            facts.task->exists ? "a scheduled task queues more at its hour" : "no scheduled task queues any");
}

void addReboot(std::vector<std::string>& lines, const Facts& facts)
{
    if (!facts.stopRequest.isKnown())
        return lines.push_back("whether one is asked for can't be read: " + facts.stopRequest.trouble);
    if (!facts.stopRequest->isThere)
        return lines.push_back("nobody asks for one");
    const auto& due = facts.stopRequest->rebootDue;
    lines.push_back(due ? "one is forced " + inMinutes(*due - facts.now)
                        : "none is forced: the user is asked, or the request names no time");
}

} // namespace

std::vector<std::string> conditions(const Facts& facts, Subject subject)
{
    std::vector<std::string> lines;
    if (subject != Subject::Reboot && facts.agentRunSeconds.isKnown() && !facts.agentRunSeconds->empty())
        lines.push_back("an agent is at work");
    addObstacles(lines, facts);
    switch (subject) {
    case Subject::Scan: addScan(lines, facts); break;
    case Subject::Install: addInstallation(lines, facts); break;
    case Subject::Reboot: addReboot(lines, facts); break;
    }
    return lines;
}

} // namespace tarnctl::why
