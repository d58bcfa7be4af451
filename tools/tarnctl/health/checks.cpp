#include "tarnctl/health/checks.h"

#include "tarnctl/codes.h"

#include <algorithm>
#include <array>

namespace tarnctl::health {

namespace {

constexpr std::int64_t hour = 3600;
// Longer than any scan or download that goes well.
constexpr std::int64_t longestRun = 6 * hour;
constexpr std::int32_t infoLevel = 4;
// One failing start is everybody's; this many in a row are not.
constexpr std::size_t repeated = 3;

struct Said {
    Grade grade;
    std::string evidence;
    std::string advice;
};

Said good(std::string evidence)
{
    return {Grade::Good, std::move(evidence), {}};
}
Said finding(std::string evidence, std::string advice)
{
    return {Grade::Finding, std::move(evidence), std::move(advice)};
}
template <typename T>
Said unreadable(const Fact<T>& fact, std::string advice)
{
    return {Grade::Unreadable, fact.trouble, std::move(advice)};
}

const std::string askStore = "see the check \"store\"; the value is read under the key's name in docs/keys.md";

std::string ago(std::int64_t seconds)
{
    if (seconds < 0)
        return "in the future";
    if (seconds < 2 * hour)
        return std::to_string(seconds / 60) + " minutes ago";
    return std::to_string(seconds / hour) + " hours ago";
}

std::size_t agentsAtWork(const Facts& facts)
{
    return facts.agentRunSeconds.isKnown() ? facts.agentRunSeconds->size() : 0;
}

bool isPluginThere(const Facts& facts)
{
    return !facts.pluginProcesses.isKnown() || *facts.pluginProcesses > 0;
}

Said checkPlugin(const Facts& facts)
{
    if (!facts.pluginProcesses.isKnown())
        return unreadable(facts.pluginProcesses, "run as administrator");
    if (*facts.pluginProcesses == 0)
        return finding("no process has tarnhd.dll loaded", "start the host's service; its log tells why a load fails");
    if (*facts.pluginProcesses > 1)
        return finding(std::to_string(*facts.pluginProcesses) + " processes have tarnhd.dll loaded",
            "only one may serve this machine: stop the others");
    return good("one process has tarnhd.dll loaded");
}

Said checkStore(const Facts& facts)
{
    if (!facts.storeTrouble.empty())
        return {Grade::Unreadable, facts.storeTrouble,
            "start the host's store; while it is away requests wait and nothing is lost"};
    return good("the store answers");
}

Said checkProfile(const Facts& facts)
{
    if (!facts.profileTime.isKnown())
        return unreadable(facts.profileTime, askStore);
    if (*facts.profileTime <= 0)
        return finding("the store has no profile yet", "the plug-in waits for the host's first successful update");
    return good("last successful update of the profile " + ago(facts.now - *facts.profileTime));
}

Said checkFeature(const Facts& facts)
{
    if (!facts.enabledWanted.isKnown() || !facts.enabledOn.isKnown())
        return unreadable(facts.enabledWanted.isKnown() ? facts.enabledOn : facts.enabledWanted, askStore);
    if (*facts.enabledWanted != *facts.enabledOn)
        return finding(std::string("wanted ") + (*facts.enabledWanted ? "on" : "off") + ", but reported " +
                           (*facts.enabledOn ? "on" : "off"),
            "the plug-in has not taken up the change: restart it if it runs");
    return good(*facts.enabledOn ? "on" : "off, as wanted");
}

bool isLeftOpen(const Facts& facts, const std::string& name)
{
    return facts.log.isKnown() && std::ranges::count(facts.log->leftOpen, name) > 0;
}

/// Of an open request that no agent is at work on.
Said checkUnserved(const Facts& facts, const std::string& kind, const Request& request, const std::string& numbers)
{
    if (!facts.recovery.isKnown() || !*facts.recovery)
        return finding(numbers + ", and nobody will serve it: no agent is at work",
            "recovery would serve it: switch windows.tarnpatch.recovery.enabled on and restart the plug-in; or write a "
            "new number");
    if (isLeftOpen(facts, kind + ' ' + std::to_string(request.start)))
        return finding(numbers + ", and recovery has given it up",
            "see what its agent runs came to, tarnctl why tells; then write a new number");
    return good(numbers + "; recovery serves it, at the plug-in's next look at what is due at the latest");
}

Said checkRequest(const Facts& facts, const std::string& kind, const Fact<Request>& request)
{
    if (!request.isKnown())
        return unreadable(request, askStore);
    if (!request->isOpen())
        return good("none is open; the last was " + std::to_string(request->ack));
    const auto numbers =
        "request " + std::to_string(request->start) + " is open, the last served was " + std::to_string(request->ack);
    if (agentsAtWork(facts) > 0)
        return good(numbers + "; an agent is at work");
    if (!isPluginThere(facts))
        return finding(numbers + ", and no plug-in is there to serve it", "start the plug-in, then request anew");
    return checkUnserved(facts, kind, *request, numbers);
}

Said checkScanRequest(const Facts& facts)
{
    return checkRequest(facts, "remote scan", facts.scan);
}
Said checkInstallationRequest(const Facts& facts)
{
    return checkRequest(facts, "remote installation", facts.installation);
}

Said checkQueue(const Facts& facts)
{
    if (!facts.queued.isKnown())
        return unreadable(facts.queued, "nothing is installed before the key holds a list again: mend or empty it");
    if (*facts.queued == 0)
        return good("empty");
    const auto items = std::to_string(*facts.queued) + (*facts.queued == 1 ? " item waits" : " items wait");
    if (agentsAtWork(facts) == 0)
        return finding(items + ", and no agent is at work", "any change of the queue starts the agent");
    return good(items + "; an agent is at work");
}

Said checkCompletion(const Facts& facts)
{
    if (!facts.completion.isKnown())
        return unreadable(facts.completion, askStore);
    if (!facts.completion->wait)
        return good("nothing waits for a reboot");
    const auto age = facts.now - facts.completion->since;
    const auto evidence = "a deployment is waited for since " + ago(age);
    if (age > facts.completion->minutes * 60)
        return finding(evidence + ", which is beyond its " + std::to_string(facts.completion->minutes) + " minutes",
            "no scan runs meanwhile: the plug-in ends the wait at its next first start after a boot");
    return good(evidence);
}

Said checkDeployment(const Facts& facts)
{
    if (!facts.deploymentInProgress.isKnown())
        return unreadable(facts.deploymentInProgress, askStore);
    if (!*facts.deploymentInProgress)
        return good("none is in progress");
    const bool waits = facts.completion.isKnown() && facts.completion->wait;
    if (agentsAtWork(facts) == 0 && !waits)
        return finding("in progress, with no agent at work and nothing that waits for a reboot",
            "the agent died in it: the next start of the agent goes on");
    return good("in progress");
}

Said checkAgentProgram(const Facts& facts)
{
    if (!facts.agentProgram.isKnown())
        return {Grade::Finding, facts.agentProgram.trouble, "repair the installation: no scan can run"};
    return good(*facts.agentProgram);
}

Said checkAgentRun(const Facts& facts)
{
    if (!facts.agentRunSeconds.isKnown())
        return unreadable(facts.agentRunSeconds, "run as administrator");
    if (facts.agentRunSeconds->empty())
        return good("no agent is at work");
    const auto longest = *std::max_element(facts.agentRunSeconds->begin(), facts.agentRunSeconds->end());
    const auto evidence = std::to_string(facts.agentRunSeconds->size()) + " at work, the longest since " + ago(longest);
    return longest > longestRun ? finding(evidence, "it hangs: no other start can begin before it ends")
                                : good(evidence);
}

Said checkLastScan(const Facts& facts)
{
    if (!facts.lastScan.isKnown() || !facts.scanPeriodHours.isKnown())
        return unreadable(facts.lastScan.isKnown() ? facts.scanPeriodHours : facts.lastScan, askStore);
    if (*facts.lastScan < 0)
        return finding("never", "see the check \"agent program\" and tarnctl why scan");
    const auto age = facts.now - *facts.lastScan;
    if (age > 2 * *facts.scanPeriodHours * hour)
        return finding(
            ago(age) + ", more than twice the period of " + std::to_string(*facts.scanPeriodHours) + " hours",
            "tarnctl why scan tells what the last starts came to");
    return good(ago(age));
}

Said checkPatchStorage(const Facts& facts)
{
    if (!facts.patchStorage.isKnown())
        return unreadable(
            facts.patchStorage, "a deployment that waits for a reboot can't be completed: delete the key");
    return good(*facts.patchStorage ? "holds a deployment" : "empty");
}

Said checkTask(const Facts& facts)
{
    if (!facts.task.isKnown())
        return unreadable(facts.task, "see whether the Task Scheduler's service runs; run as administrator");
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
        return unreadable(facts.stopRequest, "run as administrator");
    const auto& request = *facts.stopRequest;
    if (!request.isThere)
        return good("nobody asks for its stop");
    if (request.serviceRuns)
        return finding("runs, although it is to be stopped", "the plug-in stops it every 20 seconds: see that it runs");
    return good("stopped, as asked for");
}

Said checkReboot(const Facts& facts)
{
    if (!facts.stopRequest.isKnown())
        return unreadable(facts.stopRequest, "run as administrator");
    const auto& due = facts.stopRequest->rebootDue;
    if (!facts.stopRequest->isThere || !due)
        return good("none is forced");
    if (facts.now > *due)
        return finding("was due " + ago(facts.now - *due), "tarnctl why reboot tells what the plug-in tried");
    return good("due in " + std::to_string((*due - facts.now) / 60) + " minutes");
}

Said checkUpdates(const Facts& facts)
{
    if (!facts.updates.isKnown())
        return unreadable(facts.updates, "run as administrator");
    if (facts.updates->isSaved && facts.updates->isOff && agentsAtWork(facts) == 0)
        return finding("paused, with no agent at work", "the next agent run resumes them");
    return good(facts.updates->isOff ? "switched off" : "not paused");
}

Said checkLists(const Facts& facts)
{
    for (const auto* list : {&facts.missingUpdates, &facts.installationLog, &facts.publishedPatches})
        if (!list->isKnown())
            return unreadable(*list, "the next agent run writes the list anew");
    return good(std::to_string(*facts.missingUpdates) + " missing updates, " + std::to_string(*facts.installationLog) +
                " log entries, " + std::to_string(*facts.publishedPatches) + " published patches");
}

Said checkProxy(const Facts& facts)
{
    if (!facts.proxy.isKnown())
        return unreadable(facts.proxy, askStore);
    if (!facts.proxy->fault.empty())
        return finding(facts.proxy->fault, "write the setting as [protocol://][user[:password]@]host[:port]");
    return good(facts.proxy->text.empty() ? "none" : facts.proxy->text);
}

Said checkLogFolder(const Facts& facts)
{
    if (!facts.log.isKnown())
        return unreadable(facts.log, "the folder's access rights are wrong, or nothing was ever logged");
    if (!facts.log->isWritable)
        return finding(facts.log->path + " can't be written", "mend its access rights: log lines are lost silently");
    return good(facts.log->path);
}

Said checkLogLines(const Facts& facts)
{
    if (!facts.log.isKnown())
        return unreadable(facts.log, "see the check \"log folder\"");
    if (facts.log->endsMissing > 0)
        return finding(std::to_string(facts.log->endsMissing) + " lives of the plug-in have no end in the log",
            "the host crashed or was killed: look at the lines before each \"LOGGING STARTED\"");
    if (facts.log->unreadableLines > 0)
        return finding(std::to_string(facts.log->unreadableLines) + " lines are no records",
            "another program wrote into the log, or the disk was full");
    return good("no gaps");
}

Said checkLogLevel(const Facts& facts)
{
    if (!facts.log.isKnown())
        return unreadable(facts.log, "see the check \"log folder\"");
    if (facts.log->level > infoLevel)
        return finding("level " + std::to_string(facts.log->level) + " is set, which is for debugging",
            "delete the value LogLevel: the log turns over faster and costs time");
    return good("level " + std::to_string(facts.log->level));
}

Said checkExitCodes(const Facts& facts)
{
    if (!facts.log.isKnown())
        return unreadable(facts.log, "see the check \"log folder\"");
    const auto& codes = facts.log->exitCodes;
    if (codes.empty())
        return good("no agent run in the log");
    const auto same = static_cast<std::size_t>(std::find_if(codes.rbegin(), codes.rend(), [&](std::int64_t code) {
        return code != codes.back();
    }) - codes.rbegin());
    const auto evidence = "the last was " + std::to_string(codes.back()) + ": " + meaningOf(codes.back());
    if (codes.back() != 0 && same >= repeated)
        return finding(evidence + ", " + std::to_string(same) + " times in a row", "the agent's own log tells more");
    return good(evidence);
}

struct Row {
    std::string_view name;
    Said (*check)(const Facts&);
};
constexpr std::array<Row, 23> rows = {{
    {"plug-in", checkPlugin},
    {"store", checkStore},
    {"profile", checkProfile},
    {"feature", checkFeature},
    {"scan request", checkScanRequest},
    {"installation request", checkInstallationRequest},
    {"deployment queue", checkQueue},
    {"deployment", checkDeployment},
    {"reboot wait", checkCompletion},
    {"patch storage", checkPatchStorage},
    {"agent program", checkAgentProgram},
    {"agent run", checkAgentRun},
    {"agent exit codes", checkExitCodes},
    {"last scan", checkLastScan},
    {"lists", checkLists},
    {"scheduled task", checkTask},
    {"update service", checkService},
    {"forced reboot", checkReboot},
    {"automatic updates", checkUpdates},
    {"proxy", checkProxy},
    {"log folder", checkLogFolder},
    {"log lines", checkLogLines},
    {"log level", checkLogLevel},
}};

} // namespace

std::string_view nameOf(Grade grade)
{
    switch (grade) {
    case Grade::Good: return "good";
    case Grade::Finding: return "finding";
    case Grade::Unreadable: return "unreadable";
    }
    return {};
}

std::vector<Verdict> examine(const Facts& facts)
{
    std::vector<Verdict> verdicts;
    for (const auto& row : rows) {
        auto said = row.check(facts);
        verdicts.push_back({row.name, said.grade, std::move(said.evidence), std::move(said.advice)});
    }
    return verdicts;
}

} // namespace tarnctl::health
