#pragma once

#include <map>
#include <optional>

/// How often each thread of this process, without its main thread, went to sleep or was put aside since it began; by
/// the number that the system below has for it.
using ThreadSwitches = std::map<unsigned long, unsigned long long>;
/// Nothing where the system that runs the program does not tell.
std::optional<ThreadSwitches> readThreadSwitches();

/// Milliseconds that all threads of this process computed, in user and kernel mode.
double processMilliseconds();
