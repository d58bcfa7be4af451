#pragma once

namespace vx::logging::details {

/// The system's number of the calling thread, never 0. It may be used again once the thread has ended.
unsigned long currentThreadId() noexcept;

} // namespace vx::logging::details
