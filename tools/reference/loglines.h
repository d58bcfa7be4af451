#pragma once

#include "reference/placeholder.h"

#include <map>
#include <string>
#include <vector>

namespace tools {

/// A line that a statement may write.
struct LogLine {
    /// "exception" for a text that ends up in the line of whoever catches it, "part" for one that may be inserted into
    /// another
    std::string level;
    std::string text;

    bool operator==(const LogLine&) const = default;
};

/// Functions that write what they are given: which argument, at which level.
struct LogHelper {
    std::size_t argument = 0;
    std::string level;
};
using LogHelpers = std::map<std::string, LogHelper, std::less<>>;

/// Those of a source, beside the ones that are known already; each may use those above it.
void findHelpers(Tokens source, LogHelpers& known);

/// All lines of a source that have a text of their own, each once and in its order; then its other texts of several
/// words.
std::vector<LogLine> logLinesOf(Tokens source, const Constants& constants, const LogHelpers& helpers);

} // namespace tools
