#pragma once

#include <string>

namespace VxQrlLogging {

/// Local time minus UTC in minutes as the banner prints it; 3599 when the zone is unknown.
int utcOffset() noexcept;

/// The terminal session of this process; 0xDEADBEEF when unknown.
unsigned long session() noexcept;

/// The text of a log's first line.
std::wstring startBanner(bool utc, int offset, unsigned long session);

} // namespace VxQrlLogging
