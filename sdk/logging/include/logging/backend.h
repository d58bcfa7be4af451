#pragma once

#include <atomic>
#include <string_view>

/// What the front-end needs of the back-end: the process-wide logger's level and two entries. Levels are the
/// back-end's: 1 fatal, 2 error, 3 warning, 4 info, 5 debug, 6 verbose.
namespace VxQrlLogging {

namespace details {
/// Mirrors the level of the process-wide logger; 0 filters everything. Written by that logger only.
extern std::atomic<int> processLevel;
} // namespace details

/// Whether a message of this level passes the process-wide logger. One comparison; any thread.
inline bool isEnabled(int level) noexcept
{
    return level <= details::processLevel.load(std::memory_order_relaxed);
}

/// Writes one record through the process-wide logger. The format is printf's with UTF-8 text. Any
/// thread; never throws; keeps the thread's last error.
void log(int level, const char* format, ...) noexcept;
/// The same for two UTF-8 texts without zeros, one behind the other.
void write(int level, std::string_view first, std::string_view second) noexcept;

} // namespace VxQrlLogging
