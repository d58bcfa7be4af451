#pragma once

#include "vxtl/handle.h"
#include "vxtl/sync.h"

#include <functional>
#include <memory>

namespace vx::tarn {

/// A thread that may outlive its owner: it keeps the module that it runs in loaded until its body and all that
/// the body holds are gone. Its handle fires after that. Destroying the object neither waits for the thread nor
/// ends it, so the body must own what it uses.
class PinnedThread : public IWaitable {
public:
    /// Starts the thread. A std::exception out of `body` is logged at error level. Throws Win32Exception.
    explicit PinnedThread(std::function<void()> body);
    /// Notes a thread that is left behind, see vxtl/modulelife.h.
    ~PinnedThread() override;
    PinnedThread(const PinnedThread&) = delete;
    PinnedThread& operator=(const PinnedThread&) = delete;

    void* getHandle() const override { return m_handle->get(); }

private:
    SharedHandle m_handle;
};

} // namespace vx::tarn
