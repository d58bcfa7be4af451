#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace devhost::machine {

/// Seconds of a calendar that knows no time zone: for the boundaries of triggers these are local time.
using Moment = std::chrono::local_seconds;

/// "2026-01-31T12:00:00" and nothing else; nothing for a date or time that does not exist.
std::optional<Moment> parseBoundary(std::string_view text);
/// The way back, for the years 0 to 9999.
std::string boundaryText(Moment moment, char separator = 'T');

} // namespace devhost::machine
