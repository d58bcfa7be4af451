#pragma once

#include "settings-api/settingsimpl.h"
#include "vxtl/lock.h"

#include <memory>

namespace vx::settings {

/// A change callback that its owner can end, whatever the one who calls it knows of that. Held by shared pointer, by
/// the caller too. Any thread; calls go through one at a time, and a call may come from inside a call.
class GatedCallback {
public:
    explicit GatedCallback(const ChangeCallback& callback);
    GatedCallback(const GatedCallback&) = delete;
    GatedCallback& operator=(const GatedCallback&) = delete;

    /// Calls the callback, or does nothing when closed. Throws what the callback throws.
    void operator()(const std::wstring& name);
    /// Blocks while another thread's call is inside. No call begins after this, and the callback is destroyed; from
    /// inside a call that happens when the call has returned.
    void close() noexcept;

private:
    sync::RecursiveMutex m_mutex;
    std::shared_ptr<const ChangeCallback> m_callback; ///< empty when closed; guarded by m_mutex
};

} // namespace vx::settings
