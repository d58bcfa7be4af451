#pragma once

#include "bench/comparison.h"
#include "sandbox.h"

/// Rows of records that reach the file; one process.
void compareWrittenRecords(bench::Comparison& table, const Sandbox& sandbox);
