#pragma once

#include "bench/comparison.h"

/// Rows of calls that the level filters.
void compareFilteredCalls(bench::Comparison& table);
