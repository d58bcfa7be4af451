#pragma once

#include "vxtl/handle.h"

#include <functional>

namespace vx::tarn {

/// A thread that ends within its owner's life: destruction blocks until the body has returned. Unlike the standard
/// library's it leaves nothing of the run-time behind when the module is unloaded.
class JoinedThread {
public:
    /// Starts the thread. What `body` throws is logged at error level. Throws Win32Exception.
    explicit JoinedThread(std::function<void()> body);
    ~JoinedThread();
    JoinedThread(const JoinedThread&) = delete;
    JoinedThread& operator=(const JoinedThread&) = delete;

private:
    const std::function<void()> m_body;
    const KernelHandle m_handle;
};

} // namespace vx::tarn
