#include "tarnctl/health/rows.h"

namespace tarnctl::health {

Said checkStore(const Facts& facts)
{
    if (!facts.storeTrouble.empty())
        return {Grade::Unreadable, facts.storeTrouble,
            "start the host's store if it is down; while it is away requests wait and nothing is lost"};
    return good("the store answers");
}

Said checkProfile(const Facts& facts)
{
    if (!facts.profileTime.isKnown())
        return noStoreValue(facts.profileTime);
    if (*facts.profileTime <= 0)
        return finding("the store has no profile yet", "the plug-in waits for the host's first successful update");
    return good("last successful update of the profile " + ago(facts.now - *facts.profileTime));
}

Said checkFeature(const Facts& facts)
{
    if (!facts.enabledWanted.isKnown() || !facts.enabledOn.isKnown())
        return noStoreValue(facts.enabledWanted.isKnown() ? facts.enabledOn : facts.enabledWanted);
    if (*facts.enabledWanted != *facts.enabledOn)
        return finding(std::string("wanted ") + (*facts.enabledWanted ? "on" : "off") + ", but reported " +
                           (*facts.enabledOn ? "on" : "off"),
            "the plug-in has not taken up the change: restart it if it runs");
    return good(*facts.enabledOn ? "on" : "off, as wanted");
}

Said checkLastScan(const Facts& facts)
{
    if (!facts.lastScan.isKnown() || !facts.scanPeriodHours.isKnown())
        return noStoreValue(facts.lastScan.isKnown() ? facts.scanPeriodHours : facts.lastScan);
    if (*facts.lastScan < 0)
        return finding("never", "see the check \"agent program\" and tarnctl why scan");
    const auto age = facts.now - *facts.lastScan;
    if (age < 0)
        return finding(ago(age), "the clock was set back: the next good scan writes the time anew");
    if (age > 2 * *facts.scanPeriodHours * secondsPerHour)
        return finding(
            ago(age) + ", more than twice the period of " + std::to_string(*facts.scanPeriodHours) + " hours",
            "tarnctl why scan tells what the last starts came to");
    return good(ago(age));
}

Said checkLists(const Facts& facts)
{
    for (const auto* list : {&facts.missingUpdates, &facts.installationLog, &facts.publishedPatches})
        if (!list->isKnown())
            return noValue(*list, "see the check \"store\"", "the next agent run writes the list anew");
    return good(std::to_string(*facts.missingUpdates) + " missing updates, " + std::to_string(*facts.installationLog) +
                " log entries, " + std::to_string(*facts.publishedPatches) + " published patches");
}

Said checkProxy(const Facts& facts)
{
    if (!facts.proxy.isKnown())
        return noStoreValue(facts.proxy);
    if (!facts.proxy->fault.empty())
        return finding(facts.proxy->fault, "write the setting as [protocol://][user[:password]@]host[:port]");
    return good(facts.proxy->text.empty() ? "none" : facts.proxy->text);
}

} // namespace tarnctl::health
