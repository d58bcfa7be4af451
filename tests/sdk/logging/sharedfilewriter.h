#pragma once

#include <string_view>

inline constexpr std::string_view sharedFileWriterMode = "write-records";

/// The body of a process that shares a log: arguments are the name of its start event, a tag for its records
/// and their count.
int runSharedFileWriter(int argc, char** argv);
