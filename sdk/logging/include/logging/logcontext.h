#pragma once

#include "logging/details/criticalsection.h"
#include "logging/logstream.h"

#include <map>
#include <string>
#include <string_view>
#include <thread>

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
    /// this line, a change of -1 before it. Never throws; keeps the thread's
    /// last error.
    void write(Level level, std::string_view text, int indentChange) noexcept;

private:
    int takeDepth(int indentChange);

    std::map<std::thread::id, int> m_depths; ///< guarded by m_lock while that is valid
    bool m_lockValid;
    details::CriticalSection m_lock;
};

} // namespace vx::logging
