#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace vx::qrl {

/// The plug-in that stands behind the host's callback table. Made, run and destroyed on the host's main-callback
/// thread; the other operations come from other threads, also ahead of run and after it.
class PluginImpl {
public:
    /// Blocks for the whole working life of the plug-in.
    virtual void run() = 0;
    /// Asks run to end.
    virtual void stop() = 0;
    /// `type` and `data` are the values of the system's power broadcast.
    virtual void onPowerEvent(std::uint32_t type, std::uint32_t data);
    /// `type` and `data` are the values of the system's session-change notice.
    virtual void onSessionChangeEvent(std::uint32_t type, std::uint32_t data);
    virtual ~PluginImpl();
};

using PluginFactory = std::function<std::shared_ptr<PluginImpl>()>;

/// Stores the maker of the plug-in; it runs once, from the host's main callback. Throws BaseException on
/// a second registration.
void registerPluginFactory(PluginFactory factory);

} // namespace vx::qrl
