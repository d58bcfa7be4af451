#pragma once

#include <cstddef>

namespace tools::qrlprobe {

/// What is checked of a host, in the order of the report.
enum class Check {
    Name,
    Record,
    Size,
    Hoster,
    InitializeOnce,
    MainOnce,
    Apartment,
    Reports,
    Stack,
    SameRecord,
    Members,
    Threads,
    EventsAfterStart,
    StopAfterStart,
    StopOnce,
    EventsBeforeStop,
    CallsAfterEnd,
    Stop,
    Unload,
};

inline constexpr std::size_t checkCount = static_cast<std::size_t>(Check::Unload) + 1;

struct CheckText {
    const char* name; ///< also that of the host's misbehaviour which fails it: tarnhost run --misbehave
    const char* expected;
};

const CheckText& textOf(Check check);

} // namespace tools::qrlprobe
