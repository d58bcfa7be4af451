#include "host/hostcallbacks.h"

#include <mutex>

namespace devhost::host {

namespace {
std::mutex currentMutex;
HostCallbacks* current = nullptr; // guarded by currentMutex
} // namespace

HostCallbacks::HostCallbacks(StateListener listener) : m_listener(std::move(listener))
{
    const std::lock_guard lock(currentMutex);
    current = this;
}

HostCallbacks::~HostCallbacks()
{
    const std::lock_guard lock(currentMutex);
    if (current == this)
        current = nullptr;
}

HosterApi* HostCallbacks::record()
{
    static HosterApi api{0, &HostCallbacks::reportPluginState};
    return &api;
}

void DEVHOST_CALLBACK HostCallbacks::reportPluginState(const char* name, std::uint32_t state)
{
    const std::lock_guard lock(currentMutex);
    if (current)
        current->m_listener(name ? name : "", state);
}

} // namespace devhost::host
