#pragma once

#include "logreading/record.h"
#include "tarnctl/log/pattern.h"

#include <optional>
#include <string_view>

namespace tarnctl::log {

/// Which lines are wanted; what is not set asks for nothing.
struct Wanted {
    std::optional<logreading::Moment> since;
    std::optional<logreading::Level> level; ///< this one and all that are more severe
    std::optional<std::uint16_t> process;
    std::optional<std::uint16_t> thread;
    std::optional<Pattern> pattern;
};

/// "2026-11-22", "2026-11-22 04:55", "2026-11-22 04:55:53.123", or a time before `now`: "90s", "15m", "2h", "3d".
/// Empty for anything else.
std::optional<logreading::Moment> parseSince(std::string_view text, logreading::Moment now);

/// Passes what is wanted. A line that is no record goes with the record before it. One thread.
class Filter {
public:
    explicit Filter(Wanted wanted) : m_wanted(std::move(wanted)) {}

    /// Whether it passes any line, so that nobody need ask.
    bool passesAll() const;
    /// `record` is empty for a line that is none.
    bool passes(std::string_view line, const logreading::Record* record);

private:
    bool asksForRecords() const;
    bool isWanted(const logreading::Record& record) const;

    Wanted m_wanted;
    bool m_passed = false; ///< the last record
    bool m_any = false;    ///< there was one
};

} // namespace tarnctl::log
