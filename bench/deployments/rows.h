#pragma once

#include "bench/comparison.h"

// The rows of the table, one function for each subject.

/// A pass of the publisher; floor: parsing its three inputs and dumping its result, nothing else.
void comparePublishing(bench::Comparison& table);

/// Deriving an update_id; floor: one hash with a cryptographic provider opened for it.
void compareDerivation(bench::Comparison& table);

/// Pushing to a queue that holds some items; floor: mutex, read, parse, dump and write of the list.
void compareQueuing(bench::Comparison& table);

/// Reading a list of records; floor: the same with each object's members copied into a map first.
void compareReading(bench::Comparison& table);
