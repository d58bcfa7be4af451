#pragma once

#include "qrl-plugin/pluginimpl.h"
#include "vxtl/comutils.h"
#include "vxtl/lock.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <vector>

namespace vx::settings {
class Settings;
}
namespace vx::tarn::common {
class CommonFactory;
class Event;
class IDeploymentQueue;
class IUpdaterLauncher;
} // namespace vx::tarn::common

namespace vx::tarn {

enum class ResultItem : std::int32_t;
class ActionScheduler;
class AutoInstallation;
class CurrentOperations;
class Recovery;
class StoreWatch;
class Subscriptions;
class TarnhdFactory;
class TarnpatchManager;
class TarnpatchSettings;
class TarnpatchStatus;
class WUSStopper;

/// The plug-in: owns every long-lived object, puts them together, and routes what comes from outside. Made, run
/// and destroyed on one thread, which it puts into the multithreaded apartment. stop and onPowerEvent may come
/// from any thread at any time; the change handlers run on the store's threads, in parallel with everything else.
///
/// The events exist from construction on. All other objects are made by run before it raises m_initialized, and
/// are read-only from then on; whoever may come earlier looks at that flag first.
class TarnHandler : public qrl::PluginImpl {
public:
    /// Throws ComException when the apartment can't be entered.
    TarnHandler(std::shared_ptr<common::CommonFactory> commonFactory, std::shared_ptr<TarnhdFactory> factory);
    ~TarnHandler() override;
    TarnHandler(const TarnHandler&) = delete;
    TarnHandler& operator=(const TarnHandler&) = delete;

    /// Blocks until stop. Throws what the store throws before the processing has begun.
    void run() override;
    /// Makes run end, also one that has yet to begin. Waits up to 10 seconds for the agent manager's thread; a
    /// running agent is left alone.
    void stop() override;
    void onPowerEvent(std::uint32_t type, std::uint32_t data) override;

private:
    void initializeHandler();
    /// A new store access. Waits while the store can't be reached; throws when stopped meanwhile.
    std::shared_ptr<settings::Settings> createSettings();
    std::shared_ptr<ActionScheduler> createActionScheduler();
    /// False when stopped meanwhile.
    bool waitForProfile();
    bool hasProfile() const;
    std::chrono::milliseconds pollingPeriod() const;
    /// Empty when it is not wanted.
    std::unique_ptr<Recovery> createRecovery();
    void process();
    void runThreads(Subscriptions& subscriptions);
    void waitForEvents();
    void publish();
    void publishStatus();
    void publishChanges();
    /// Sleeps; true as soon as the stop event is set.
    bool waitForStop(std::chrono::milliseconds timeout) const;
    void stopManager() noexcept;

    std::unique_ptr<Subscriptions> subscribeToChanges();
    void setupActionScheduler();
    void updateEnabledStatus();
    void startScan();
    void startScanSignalChanged();
    void startInstallSignalChanged();
    void finishRemoteInstall(ResultItem result);
    void startDeploymentQueueInstallation();
    void onPostRebootDeployCompleted();
    /// For a change of the wait that may have gone unseen.
    void catchUpWithDeployment();

    // Destroyed from the last to the first: the apartment outlives everything made in it.
    comutils::ComApartment m_comApartment;
    std::shared_ptr<settings::Settings> m_settings;
    std::vector<std::weak_ptr<settings::Settings>> m_storeAccesses; ///< m_settings and those given away
    std::shared_ptr<StoreWatch> m_storeWatch;
    std::shared_ptr<common::CommonFactory> m_commonFactory;
    std::shared_ptr<TarnhdFactory> m_factory;
    std::shared_ptr<TarnpatchSettings> m_tarnpatchSettings;
    std::shared_ptr<TarnpatchStatus> m_tarnpatchStatus;
    std::atomic<bool> m_running{false}; ///< for inspection only
    std::shared_ptr<TarnpatchManager> m_manager;
    std::shared_ptr<common::IUpdaterLauncher> m_updaterLauncher;
    std::shared_ptr<WUSStopper> m_wusStopper;
    std::shared_ptr<common::IDeploymentQueue> m_deploymentQueue;
    std::shared_ptr<ActionScheduler> m_actionScheduler;
    std::shared_ptr<AutoInstallation> m_autoInstallation;
    std::shared_ptr<CurrentOperations> m_currentOperations;
    std::shared_ptr<common::Event> m_stopEvent;          ///< manual-reset; ends all waits
    std::shared_ptr<common::Event> m_statusChangedEvent; ///< manual-reset; wakes run to publish
    std::atomic<bool> m_initialized{false};
    std::unique_ptr<Recovery> m_recovery; ///< empty when it is off; made before other threads can use it
    sync::Mutex m_switchMutex;            ///< held while the product is switched on or off
    sync::Mutex m_stopMutex;              ///< held by stop, and by run for the stop that came too early
};

} // namespace vx::tarn
