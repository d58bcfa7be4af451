#include "logging/logcontext.h"

#include <cstdio>

namespace vx::logging {

std::string escape(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20) {
            result += c;
            continue;
        }
        static constexpr std::string_view named = "0......abtnvfr";
        if (byte < named.size() && named[byte] != '.') {
            result += {'\\', named[byte]};
            continue;
        }
        char octal[8];
        std::snprintf(octal, sizeof octal, "\\%03o", byte);
        result += octal;
    }
    return result;
}

LogContext& LogContext::instance()
{
    // Never destroyed: other threads may still log while the process ends.
    static LogContext& context = *new LogContext;
    return context;
}

int LogContext::takeDepth(int indentChange)
{
    const std::lock_guard lock(m_mutex);
    int& depth = m_depths[std::this_thread::get_id()];
    const int old = depth;
    depth += indentChange;
    return indentChange >= 1 ? old : depth;
}

void LogContext::write(Level level, std::string_view text, int indentChange) noexcept
{
    try {
        if (!isEnabled(level))
            return;
        const int depth = takeDepth(indentChange);
        const std::string indentation(depth > 0 ? 2 * static_cast<std::size_t>(depth) : 0, ' ');
        VxQrlLogging::log(backendLevel(level), "%s%s", indentation.c_str(), escape(text).c_str());
    } catch (...) {
    }
}

} // namespace vx::logging
