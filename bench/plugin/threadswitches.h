#pragma once

#include <optional>

/// How often the threads of this process, without its main thread, went to sleep or were put aside since they
/// began, and how many they are. Nothing where the system that runs the program does not tell.
struct ThreadSwitches {
    unsigned threads = 0;
    unsigned long long count = 0;
};
std::optional<ThreadSwitches> readThreadSwitches();

/// Milliseconds that all threads of this process computed, in user and kernel mode.
double processMilliseconds();
