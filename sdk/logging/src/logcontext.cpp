#include "logcontext.h"

#include "logging/details/lasterror.h"
#include "logging/details/messagetext.h"
#include "logging/details/threadid.h"
#include "logging/nodestructor.h"

#include <algorithm>
#include <mutex>
#include <new>

namespace vx::logging {

namespace {

constexpr unsigned long lockSpinCount = 1500;

void appendControl(details::MessageText& target, unsigned char byte)
{
    static constexpr std::string_view named = "0......abtnvfr";
    if (byte < named.size() && named[byte] != '.') {
        const char spelled[] = {'\\', named[byte]};
        target.append({spelled, sizeof spelled});
        return;
    }
    const char octal[] = {'\\', '0', static_cast<char>('0' + byte / 8), static_cast<char>('0' + byte % 8)};
    target.append({octal, sizeof octal});
}

void appendEscaped(details::MessageText& target, std::string_view text)
{
    std::size_t plain = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0x20)
            continue;
        target.append(text.substr(plain, i - plain));
        appendControl(target, byte);
        plain = i + 1;
    }
    target.append(text.substr(plain));
}

} // namespace

std::string escape(std::string_view text)
{
    details::MessageText escaped;
    appendEscaped(escaped, text);
    return std::string(escaped.view());
}

LogContext& LogContext::instance()
{
    // Other threads may still log while the process ends.
    static NoDestructor<LogContext> context;
    return *context;
}

LogContext::LogContext() : m_lockValid(false), m_lock(lockSpinCount)
{
    m_lockValid = m_lock.error() == 0;
    if (!m_lockValid)
        VxQrlLogging::log(2, "!!! InitializeCriticalSectionAndSpinCount failed: %i\n", m_lock.error());
}

int LogContext::takeDepth(int indentChange) noexcept
{
    std::unique_lock lock(m_lock, std::defer_lock);
    if (m_lockValid)
        lock.lock();
    const unsigned long thread = details::currentThreadId();
    const auto found = m_depths.find(thread);
    const int old = found == m_depths.end() ? 0 : found->second;
    const int depth = std::max(old + indentChange, 0);
    if (depth == old)
        return depth;
    if (depth == 0) {
        m_depths.erase(found);
    } else if (old != 0) {
        found->second = depth;
    } else {
        try {
            m_depths.emplace(thread, depth);
        } catch (const std::bad_alloc&) {
            // The scope's lines go out as they would without it, and its end finds nothing to take back.
        }
    }
    return indentChange >= 1 ? old : depth;
}

void LogContext::write(Level level, std::string_view text, int indentChange) noexcept
{
    try {
        const bool enabled = isEnabled(level);
        // Both ends of a scope count although the level may be filtered since it began: a depth that is left behind
        // would go on to the thread that is given the number next.
        if (!enabled && indentChange == 0)
            return;
        const details::LastErrorKeeper keeper;
        const int depth = takeDepth(indentChange);
        if (!enabled)
            return;
        details::MessageText indentation;
        indentation.append(depth > 0 ? 2 * static_cast<std::size_t>(depth) : 0, ' ');
        details::MessageText escaped;
        appendEscaped(escaped, text);
        VxQrlLogging::write(backendLevel(level), indentation.view(), escaped.view());
    } catch (...) {
    }
}

} // namespace vx::logging
