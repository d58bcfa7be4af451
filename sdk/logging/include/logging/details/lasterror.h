#pragma once

namespace vx::logging::details {

/// Gives the thread its last error back, whatever the code in between did to it. A stack object.
class LastErrorKeeper {
public:
    LastErrorKeeper() noexcept;
    ~LastErrorKeeper();
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

private:
    unsigned long m_lastError;
};

} // namespace vx::logging::details
