#pragma once

#include "bench/comparison.h"
#include "bench/logsandbox.h"

/// The row of records that reach the file; one process.
void compareWrittenRecords(bench::Comparison& table, const bench::LogSandbox& sandbox);
/// The row of records that each find the file full.
void compareRotatingRecords(bench::Comparison& table, const bench::LogSandbox& sandbox);
