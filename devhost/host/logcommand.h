#pragma once

#include "host/context.h"
#include "host/exitcode.h"

#include <filesystem>
#include <optional>

namespace devhost::host {

enum class LogMode { Print, Follow };

/// Prints the last `lines` lines of the log, all of them without a number, and in follow mode those that
/// come until the user stops it. `file` empty: the plug-in's own log. Throws CommandError.
ExitCode showLog(
    const Context& context, const std::filesystem::path& file, LogMode mode, std::optional<unsigned> lines);

} // namespace devhost::host
