#pragma once

#include "host/pluginapi.h"

#include <functional>
#include <string>

namespace devhost::host {

/// What the host offers to its plug-in. The callback carries no context, so one object is current at a
/// time: the one made last. The listener runs on the plug-in's threads.
class HostCallbacks {
public:
    using StateListener = std::function<void(const std::string& plugin, std::uint32_t state)>;

    explicit HostCallbacks(StateListener listener);
    /// Waits for a listener that is running; reports that come later are dropped.
    ~HostCallbacks();
    HostCallbacks(const HostCallbacks&) = delete;
    HostCallbacks& operator=(const HostCallbacks&) = delete;

    /// Lives as long as the process, since a plug-in that does not end may still call it.
    HosterApi* record();

private:
    static void DEVHOST_CALLBACK reportPluginState(const char* name, std::uint32_t state);

    StateListener m_listener;
};

} // namespace devhost::host
