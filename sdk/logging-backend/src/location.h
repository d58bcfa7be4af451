#pragma once

#include <string>

namespace VxQrlLogging {

/// Whose folder the log files go to.
enum class Location { Machine, User, LowIntegrity };

/// The root folder without a backslash at its end; empty when nothing names one.
std::wstring rootOf(Location location);

} // namespace VxQrlLogging
