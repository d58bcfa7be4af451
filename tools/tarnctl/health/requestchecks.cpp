#include "tarnctl/health/obstacles.h"
#include "tarnctl/health/rows.h"

#include <algorithm>
#include <limits>

namespace tarnctl::health {

namespace {

/// Of an open request that no agent is at work on, though nothing keeps one from starting.
Said checkUnserved(const Facts& facts, const std::string& request, const std::string& evidence)
{
    if (!facts.recovery.isKnown() || !*facts.recovery)
        return finding(evidence + ", and nobody will serve it: no agent is at work",
            "recovery would serve it: switch windows.tarnpatch.recovery.enabled on and restart the plug-in; or write a "
            "new number");
    if (facts.log.isKnown() && std::ranges::count(facts.log->leftOpen, request) > 0)
        return finding(evidence + ", and recovery has given it up",
            "see what its agent runs came to, tarnctl why tells; then write a new number");
    return good(evidence + "; recovery serves it, at the plug-in's next look at what is due at the latest");
}

Said checkRequest(const Facts& facts, const std::string& kind, const Fact<Request>& request,
    std::optional<std::int64_t> LogFacts::*asked)
{
    if (!request.isKnown())
        return noStoreValue(request);
    if (!request->isOpen())
        return good("none is open; the last was " + std::to_string(request->ack));
    auto evidence =
        "request " + std::to_string(request->start) + " is open, the last served was " + std::to_string(request->ack);
    constexpr auto untold = std::numeric_limits<std::int64_t>::max();
    const auto since = facts.log.isKnown() ? ((*facts.log).*asked).value_or(untold) : untold;
    evidence += since == untold ? "; the log does not tell that the plug-in took it up"
                                : "; the plug-in took it up " + ago(since);
    if (isAgentAtWork(facts))
        return good(evidence + ", an agent is at work");
    if (!facts.agentRunSeconds.isKnown())
        return noMachineValue(facts.agentRunSeconds);
    if (const auto reasons = obstacles(facts); !reasons.empty())
        return finding(
            evidence + "; nobody serves it: " + reasons.front(), "remove what keeps the agent from starting");
    if (since <= underWay)
        return good(evidence);
    return checkUnserved(facts, kind + ' ' + std::to_string(request->start), evidence);
}

} // namespace

Said checkScanRequest(const Facts& facts)
{
    return checkRequest(facts, "remote scan", facts.scan, &LogFacts::scanAsked);
}
Said checkInstallationRequest(const Facts& facts)
{
    return checkRequest(facts, "remote installation", facts.installation, &LogFacts::installationAsked);
}

Said checkQueue(const Facts& facts)
{
    if (!facts.queued.isKnown())
        return noValue(facts.queued, "see the check \"store\"",
            "nothing is installed before the key holds a list again: mend or empty it");
    if (*facts.queued == 0)
        return good("empty");
    const auto items = std::to_string(*facts.queued) + (*facts.queued == 1 ? " item waits" : " items wait");
    if (isAgentAtWork(facts))
        return good(items + "; an agent is at work");
    if (!facts.agentRunSeconds.isKnown())
        return noMachineValue(facts.agentRunSeconds);
    if (isRebootAwaited(facts))
        return good(items + " for the reboot");
    return finding(items + ", and no agent is at work", "any change of the queue starts the agent");
}

Said checkCompletion(const Facts& facts)
{
    if (!facts.completion.isKnown())
        return noStoreValue(facts.completion);
    if (!facts.completion->wait)
        return good("nothing waits for a reboot");
    const auto age = facts.now - facts.completion->since;
    const auto evidence = facts.completion->since > 0
                              ? "a deployment is waited for, begun " + ago(age)
                              : std::string("a deployment is waited for, begun nobody knows when");
    if (age > facts.completion->minutes * 60)
        return finding(evidence + ", which is beyond its " + std::to_string(facts.completion->minutes) + " minutes",
            "no agent starts meanwhile: reboot; the plug-in ends the wait so many minutes after that");
    return good(evidence);
}

Said checkDeployment(const Facts& facts)
{
    if (!facts.deploymentInProgress.isKnown())
        return noStoreValue(facts.deploymentInProgress);
    if (!*facts.deploymentInProgress)
        return good("none is in progress");
    if (isAgentAtWork(facts) || isRebootAwaited(facts))
        return good("in progress");
    if (!facts.agentRunSeconds.isKnown())
        return noMachineValue(facts.agentRunSeconds);
    return finding("in progress, with no agent at work and nothing that waits for a reboot",
        "the agent died in it: the next start of the agent goes on");
}

Said checkPatchStorage(const Facts& facts)
{
    if (!facts.patchStorage.isKnown())
        return noValue(facts.patchStorage, "run as administrator",
            "a deployment that waits for a reboot can't be completed: delete the key");
    return good(*facts.patchStorage ? "holds a deployment" : "empty");
}

} // namespace tarnctl::health
