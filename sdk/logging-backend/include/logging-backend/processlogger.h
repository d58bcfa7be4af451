#pragma once

#include "logging-backend/logger.h"
#include "logging/backend.h"

#include <memory>

/// The process-wide logger: made on first use, destroyed at the end of the process. Any thread; nothing
/// here throws, and the thread's last error stays.
namespace VxQrlLogging {

Logger& processLogger() noexcept;

void open(const char* name1, const char* name2, int level, unsigned flags) noexcept;
void open(const wchar_t* name1, const wchar_t* name2, int level, unsigned flags) noexcept;
void close() noexcept;
void flush() noexcept;
/// The wide sister of the entry in backend.h; isEnabled() stands there too.
void log(int level, const wchar_t* format, ...) noexcept;

/// A logger of its own, closed.
std::unique_ptr<Logger> createLogger();

} // namespace VxQrlLogging
