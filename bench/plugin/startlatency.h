#pragma once

#include <filesystem>

/// Rows of the time from the set start event to the agent's process being made, beside the
/// bare wake-up of a waiting thread, which tells how busy the machine is. The log is open and the registry
/// names the agent's folder. True when the reach is met.
bool measureStartLatency();

/// The row of what `tarnctl health` of that folder, run again and again, does to that time: the change of its median,
/// beside the change of the bare wake-up's, which is what any busy program does. With the spread of the batches' ratios
/// of the two; true when that has 1 within it or below.
bool measureObservedStart(const std::filesystem::path& folder);
