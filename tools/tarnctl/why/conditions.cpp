#include "tarnctl/why/conditions.h"

#include "tarnctl/health/obstacles.h"

namespace tarnctl::why {

using health::Facts;

namespace {

constexpr std::int64_t hour = 3600;

std::string inMinutes(std::int64_t seconds)
{
    return seconds <= 0 ? "now" : "in " + std::to_string((seconds + 59) / 60) + " minutes";
}

/// By the plug-in's last request in this life, which is what it goes by; the last scan is the best guess without a log.
std::int64_t secondsToNextScan(const Facts& facts)
{
    const auto age =
        facts.log.isKnown() && facts.log->lastSignal ? *facts.log->lastSignal : facts.now - *facts.lastScan;
    return *facts.scanPeriodHours * hour - age;
}

void addScan(std::vector<std::string>& lines, const Facts& facts)
{
    if (facts.scan.isKnown() && facts.scan->isOpen())
        lines.push_back("request " + std::to_string(facts.scan->start) + " is open");
    if (facts.lastScan.isKnown() && facts.scanPeriodHours.isKnown())
        lines.push_back("without a request the next scan is due " + inMinutes(secondsToNextScan(facts)) +
                        ", at the plug-in's next look at what is due");
}

void addInstallation(std::vector<std::string>& lines, const Facts& facts)
{
    if (facts.installation.isKnown() && facts.installation->isOpen())
        lines.push_back("request " + std::to_string(facts.installation->start) + " is open");
    if (facts.queued.isKnown())
        lines.push_back(*facts.queued == 0 ? "the deployment queue is empty"
                                           : std::to_string(*facts.queued) + " items wait in the deployment queue");
    else if (facts.storeTrouble.empty())
        lines.push_back("the deployment queue can't be read: " + facts.queued.trouble);
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
    if (!facts.rebootDue.isKnown())
        return lines.push_back("whether one is forced can't be read: " + facts.rebootDue.trouble);
    lines.push_back(*facts.rebootDue ? "one is forced " + inMinutes(**facts.rebootDue - facts.now)
                                     : "none is forced: the user is asked, or the request names no time");
}

} // namespace

std::vector<std::string> conditions(const Facts& facts, Subject subject)
{
    std::vector<std::string> lines;
    if (subject != Subject::Reboot && facts.agentRunSeconds.isKnown() && !facts.agentRunSeconds->empty())
        lines.push_back("an agent is at work");
    for (auto& line : health::obstacles(facts))
        lines.push_back(std::move(line));
    switch (subject) {
    case Subject::Scan: addScan(lines, facts); break;
    case Subject::Install: addInstallation(lines, facts); break;
    case Subject::Reboot: addReboot(lines, facts); break;
    }
    return lines;
}

} // namespace tarnctl::why
