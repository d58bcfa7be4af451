#include "logging-backend/processlogger.h"

#include "loggerwin.h"

namespace VxQrlLogging {

std::atomic<int> details::processLevel{0};

namespace {

LoggerWin& ownLogger() noexcept
{
    static LoggerWin logger(&details::processLevel);
    return logger;
}

} // namespace

Logger& processLogger() noexcept
{
    return ownLogger();
}

void open(const char* name1, const char* name2, int level, unsigned flags) noexcept
{
    processLogger().open(name1, name2, level, flags);
}

void open(const wchar_t* name1, const wchar_t* name2, int level, unsigned flags) noexcept
{
    processLogger().open(name1, name2, level, flags);
}

void close() noexcept
{
    processLogger().close();
}

void flush() noexcept
{
    processLogger().flush();
}

// The level is asked before the logger: at the end of the process the mirror outlives it.
void log(int level, const char* format, ...) noexcept
{
    if (!isEnabled(level))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    processLogger().vlog(level, format, arguments);
    va_end(arguments);
}

void log(int level, const wchar_t* format, ...) noexcept
{
    if (!isEnabled(level))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    processLogger().vlog(level, format, arguments);
    va_end(arguments);
}

void write(int level, std::string_view first, std::string_view second) noexcept
{
    if (isEnabled(level))
        ownLogger().write(level, first, second);
}

std::unique_ptr<Logger> createLogger()
{
    return std::make_unique<LoggerWin>();
}

} // namespace VxQrlLogging
