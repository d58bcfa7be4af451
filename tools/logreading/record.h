#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace logreading {

/// How severe a record is; smaller is more severe.
enum class Level : std::uint8_t { Fatal = 1, Error, Warning, Info, Debug, Verbose };

/// The name for command lines and pages: "fatal", "error", "warning", "info", "debug", "verbose".
std::string_view nameOf(Level level);
/// Empty for a text that is none of these names.
std::optional<Level> levelOf(std::string_view name);

/// A point in time as it stands in a log: milliseconds since 1970-01-01 by the clock that the log was written with,
/// which is the machine's local time. Not to be compared with other clocks without the offset of the log's banner.
using Moment = std::int64_t;

/// "2026-11-22 04:55:53.123" or the front of it, down to the minute or the day. Empty for what is no such date.
std::optional<Moment> parseMoment(std::string_view text);
std::string formatMoment(Moment moment);

/// What a record says about the function that wrote it.
enum class Scope : std::uint8_t { None, Entered, Left };

/// One line of a log that has a header; views of that line.
struct Record {
    std::string_view line;
    /// What stands behind the header, without the indentation; of an entered or left scope its name and values.
    std::string_view message;
    Moment time = 0;
    std::uint16_t process = 0;
    std::uint16_t thread = 0;
    std::uint16_t depth = 0; ///< scopes of the thread that are open around it
    Level level = Level::Info;
    Scope scope = Scope::None;
};

/// Empty for a line that is no record: one of another program, or the rest of one that was cut.
std::optional<Record> parseRecord(std::string_view line);

} // namespace logreading
