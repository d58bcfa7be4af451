#include "logging-backend/logger.h"

namespace VxQrlLogging {

bool Logger::isEnabled(int level) const
{
    return !isFiltered(level);
}

bool Logger::isFiltered(int level) const
{
    return level > m_level.load(std::memory_order_relaxed);
}

const wchar_t* Logger::levelPrefix(int level) const
{
    switch (level) {
    case 1: return L"*F";
    case 2: return L"*E";
    case 3: return L".W";
    case 4: return L" I";
    case 5: return L" D";
    case 6: return L" V";
    default: return L"  ";
    }
}

int Logger::bannerLevel(unsigned flags) const
{
    return static_cast<int>(((flags & LOG_FLAG_BANNER_DEBUG) | 8) >> 1);
}

void Logger::log(int level, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    vlog(level, format, arguments);
    va_end(arguments);
}

void Logger::log(int level, const wchar_t* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    vlog(level, format, arguments);
    va_end(arguments);
}

} // namespace VxQrlLogging
