#pragma once

#include "tarnhd/wusstopper/forcedreboot.h"

#include <chrono>

namespace vx::tarn::common {
class CommonFactory;
class Event;
class IRegistryKeyNotifier;
class IService;
} // namespace vx::tarn::common

namespace vx::tarn {

/// Times of the service stopper; the defaults are the product's.
struct WUSStopperOptions {
    std::chrono::milliseconds pollPeriod = std::chrono::seconds(20);      ///< between rounds that nothing wakes
    std::chrono::milliseconds serviceStopWait = std::chrono::seconds(10); ///< for the service to stop
    WallClock now = systemTicks;
};

/// What the service stopper's thread does. One thread. Rounds never throw: a step that fails is logged, and the next
/// round comes no sooner than after the poll period or the next change of the registry.
class WUSPoll {
public:
    /// Borrowed.
    struct Events {
        const common::Event& stop;
        common::Event& registry; ///< auto-reset; set by a change of the watched key
    };

    /// The factory is borrowed.
    WUSPoll(const std::shared_ptr<settings::Settings>& settings, common::CommonFactory* commonFactory,
        const WUSStopperOptions& options);
    ~WUSPoll();

    /// Rounds until one is the last.
    void pollThread(const Events& events);
    /// Stops the service where that is asked for, waits, and reboots where that is due. False for the last round: the
    /// stop event is set, or the computer goes down. Throws Win32Exception when the stop event can't be waited for.
    bool round(const Events& events);

private:
    void stopIfRequired(const Events& events);
    bool resolveIfStopRequired();
    bool stopService(const Events& events);
    bool pollStatusWait(const Events& events);
    bool waitForPollPeriod(const Events& events);
    bool waitForRegistryChange(const Events& events);
    void prepareRegistryWaitHandle(const Events& events);

    common::CommonFactory* const m_commonFactory;
    const WUSStopperOptions m_options;
    const std::shared_ptr<registry::Registry> m_registry;
    const std::shared_ptr<common::IService> m_service;
    std::shared_ptr<common::IRegistryKeyNotifier> m_notifier;
    ForcedReboot m_forcedReboot;
    bool m_stopRequired = false; ///< once true for good, also when the key goes
};

} // namespace vx::tarn
