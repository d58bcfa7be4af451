#pragma once

#include "bench/comparison.h"
#include "bench/logsandbox.h"

#include <string_view>

/// Enough that no file of a round falls off the end before it is counted.
inline constexpr unsigned rotateCount = 20;

inline constexpr std::string_view racerMode = "race";

/// The body of a second process: arguments are the side ("bare" or "ours"), its tag and the folder.
int runRacer(int argc, char** argv);

/// The row of two processes that write one rotated file. Every record is read back and counted.
void compareRotationRace(bench::Comparison& table, const bench::LogSandbox& sandbox);
