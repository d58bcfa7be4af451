#pragma once

#include "logging/details/criticalsection.h"
#include "logging/logstream.h"

#include <map>
#include <string>
#include <string_view>

namespace vx::logging {

/// Spells out control characters as a C literal would, so that a message stays one line. Bytes from
/// 0x20 up stay as they are, the backslash too.
std::string escape(std::string_view text);

/// The process-wide front-end state: how deep each thread is in scopes. Any thread may write.
class LogContext {
public:
    static LogContext& instance();

    LogContext();
    LogContext(const LogContext&) = delete;
    LogContext& operator=(const LogContext&) = delete;

    /// Escapes and indents the text and hands it to the back-end. A change of +1 takes effect behind
    /// this line, a change of -1 before it, both also when the line is filtered. Never throws; keeps the thread's
    /// last error. Without memory a thread's first scope goes without its indentation; no depth falls below zero.
    /// A thread that is killed inside a scope leaves its depth to the next one with its number.
    void write(Level level, std::string_view text, int indentChange) noexcept;

private:
    int takeDepth(int indentChange) noexcept;

    /// By the system's number of the thread; only those that are in a scope. Guarded by m_lock while that is valid.
    std::map<unsigned long, int> m_depths;
    bool m_lockValid;
    details::CriticalSection m_lock;
};

} // namespace vx::logging
