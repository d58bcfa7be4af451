#pragma once

#include "tarnctl/health/checks.h"

namespace tarnctl::health {

/// What a check says, without its name.
struct Said {
    Grade grade = Grade::Good;
    std::string evidence;
    std::string advice; ///< empty when good
};

inline constexpr std::int64_t secondsPerHour = 3600;
/// What the plug-in was told of so many seconds ago may still be on its way.
inline constexpr std::int64_t underWay = 60;

Said good(std::string evidence);
Said finding(std::string evidence, std::string advice);

/// There is no value to judge: it is wrong, or could not be read.
template <typename T>
Said noValue(const Fact<T>& fact, std::string adviceToRead, std::string adviceToMend)
{
    return {fact.isWrong ? Grade::Finding : Grade::Unreadable, fact.trouble,
        std::move(fact.isWrong ? adviceToMend : adviceToRead)};
}
/// The same for one of the store.
template <typename T>
Said noStoreValue(const Fact<T>& fact)
{
    return noValue(fact, "see the check \"store\"; the value is read under the key's name in docs/keys.md",
        "write a value that the key may have: tarnctl keys tells its type");
}
/// The same for one of the machine.
template <typename T>
Said noMachineValue(const Fact<T>& fact)
{
    return noValue(fact, "run as administrator", "write a value of the right type");
}

/// "5 minutes ago", "in the future".
std::string ago(std::int64_t seconds);

/// What is not known counts as no.
bool isPluginThere(const Facts& facts);
bool isAgentAtWork(const Facts& facts);
bool isRebootAwaited(const Facts& facts);

} // namespace tarnctl::health
