#pragma once

#include "bench/comparison.h"

// The rows of the table, one function for each subject. The log is open, and a COM apartment entered.

/// An update of a scheduled task that is there already; floor: its calls of the Task Scheduler, bare.
void compareTaskUpdate(bench::Comparison& table);

/// A round of the service stopper that finds nothing to do; floor: its questions to service manager and registry, bare.
void comparePollRounds(bench::Comparison& table);
