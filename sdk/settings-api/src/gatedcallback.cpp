#include "settings-api/gatedcallback.h"

#include <utility>

namespace vx::settings {

GatedCallback::GatedCallback(const ChangeCallback& callback)
    : m_callback(std::make_shared<const ChangeCallback>(callback))
{}

void GatedCallback::operator()(const std::wstring& name)
{
    const std::lock_guard lock(m_mutex);
    // Its own share: the callback may close the gate that it is behind.
    if (const auto callback = m_callback)
        (*callback)(name);
}

void GatedCallback::close() noexcept
{
    // Destroyed after the lock is released, as nobody knows what the callback holds.
    std::shared_ptr<const ChangeCallback> closed;
    const std::lock_guard lock(m_mutex);
    closed.swap(m_callback);
}

} // namespace vx::settings
