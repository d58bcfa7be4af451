#include "tarnctl/codes.h"
#include "tarnctl/health/rows.h"

#include <algorithm>

namespace tarnctl::health {

namespace {

constexpr std::int32_t infoLevel = 4;
// One failing start is everybody's; this many in a row are not.
constexpr std::size_t repeated = 3;
// A record has room for ids of so much.
constexpr std::uint32_t largestLoggedId = 0xFFFF;

/// The plug-in's process when its lines can't get into the log.
std::optional<std::uint32_t> unloggedProcess(const Facts& facts)
{
    if (facts.pluginProcesses.isKnown())
        for (const auto process : *facts.pluginProcesses)
            if (process > largestLoggedId)
                return process;
    return std::nullopt;
}

} // namespace

Said checkLogFolder(const Facts& facts)
{
    if (!facts.logPlace.isKnown())
        return noMachineValue(facts.logPlace);
    const auto& place = *facts.logPlace;
    if (!place.exists && !isPluginThere(facts))
        return good(place.path + " is not there: nothing was logged yet");
    if (!place.exists || place.access == LogPlace::Access::Refused)
        return finding(place.path + (place.exists ? " can't be written" : " is not there"),
            "mend its access rights: log lines are lost silently");
    if (place.access == LogPlace::Access::Unknown)
        return {Grade::Unreadable, "whether the plug-in can write " + place.path + " is not told to others",
            "run as administrator"};
    return good(place.path);
}

Said checkLogLines(const Facts& facts)
{
    if (const auto process = unloggedProcess(facts))
        return finding("a record has no room for the plug-in's process id " + std::to_string(*process) +
                           ": none of its lines is written",
            "restart the host until its id is below 65536");
    if (!facts.log.isKnown())
        return noMachineValue(facts.log);
    const auto& log = *facts.log;
    const bool endedJustNow = log.isLastOpen && facts.pluginProcesses.isKnown() && facts.pluginProcesses->empty();
    if (const auto missing = log.endsMissing + (endedJustNow ? 1 : 0); missing > 0)
        return finding(std::to_string(missing) + " lives of the plug-in have no end in the log",
            "the host crashed or was killed: look at the lines before each \"LOGGING STARTED\", and the last ones");
    if (log.unreadableLines > 0)
        return finding(std::to_string(log.unreadableLines) + " lines are no records",
            "another program wrote into the log, or the disk was full");
    if (log.gaps > 0)
        return finding("records are missing in " + std::to_string(log.gaps) + " places",
            "another process held the log for half a second: look for what slows down its disk");
    return good("no gaps");
}

Said checkLogLevel(const Facts& facts)
{
    if (!facts.logPlace.isKnown())
        return noMachineValue(facts.logPlace);
    const auto level = facts.logPlace->level;
    const auto evidence = "level " + std::to_string(level);
    if (level > infoLevel)
        return finding(evidence + " is set, which is for debugging",
            "delete the value LogLevel: the log turns over faster and costs time");
    if (level < 1)
        return finding(evidence + " is set: nothing is logged", "delete the value LogLevel");
    return good(level < infoLevel ? evidence + ": agent starts and their reasons are not logged" : evidence);
}

Said checkExitCodes(const Facts& facts)
{
    if (!facts.log.isKnown())
        return noMachineValue(facts.log);
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

} // namespace tarnctl::health
