#include "tarnhd/handler/tarnhandler.h"

#include "tarnhd/handler/deploymentwatcher.h"
#include "tarnhd/handler/firstrun.h"
#include "tarnhd/handler/handlerrecovery.h"
#include "tarnhd/handler/schedulerthread.h"

#include "common/deploymentqueue/ideploymentqueue.h"
#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "common/settings/hostsettings.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "meridia-settings/qrlmeridiaerror.h"
#include "tarnhd/actions/scanafterwindowsupdate.h"
#include "tarnhd/actions/scanifexpired.h"
#include "tarnhd/actionscheduler/actionscheduler.h"
#include "tarnhd/autoinstallation/autoinstallation.h"
#include "tarnhd/currentoperations/currentoperations.h"
#include "tarnhd/factory/tarnhdfactory.h"
#include "tarnhd/manager/tarnpatchmanager.h"
#include "tarnhd/recovery/recoverythread.h"
#include "tarnhd/recovery/requestcheck.h"
#include "tarnhd/subscriptions/subscriptions.h"
#include "tarnhd/threads/joinedthread.h"
#include "tarnhd/wusstopper/wusstopper.h"
#include "vxtl/guarded.h"
#include "vxtl/scopeexit.h"

#include <optional>
#include <windows.h>

namespace vx::tarn {

using namespace std::chrono_literals;
using logging::Level;
using logging::LogStream;

namespace {

constexpr auto storeRetryPause = 500ms;
constexpr auto profilePollPause = 100ms;
constexpr std::chrono::minutes shortestPollingInterval(1);

// A failure leaves a handle that is none; run looks at it.
std::shared_ptr<common::Event> makeEvent()
{
    return std::make_shared<common::Event>(std::make_shared<KernelHandle>(CreateEventW(nullptr, TRUE, FALSE, nullptr)));
}

bool isValid(const common::Event& event)
{
    return !NoKernelHandle{}(event.getHandle());
}

} // namespace

TarnHandler::TarnHandler(std::shared_ptr<common::CommonFactory> commonFactory, std::shared_ptr<TarnhdFactory> factory)
    : m_storeWatch(std::make_shared<StoreWatch>()), m_commonFactory(std::move(commonFactory)),
      m_factory(std::move(factory)), m_stopEvent(makeEvent()), m_statusChangedEvent(makeEvent())
{}

TarnHandler::~TarnHandler() = default;

void TarnHandler::initializeHandler()
{
    VX_LOG_SCOPE();
    m_commonFactory->setStopEvent(m_stopEvent);
    // Only once the store has a profile is it known whether anybody listens.
    m_commonFactory->setStoreWrapper([watch = m_storeWatch](auto store) { return watch->watch(std::move(store)); });
    m_settings = createSettings();
    m_commonFactory->setSettings(m_settings);
    m_tarnpatchSettings = std::make_shared<TarnpatchSettings>(m_settings);
    m_tarnpatchStatus = std::make_shared<TarnpatchStatus>(m_settings);
    // Makes the start event, which all launchers open.
    m_manager = m_factory->createTarnpatchManager(m_settings);
    m_updaterLauncher = m_commonFactory->createUpdaterLauncher();
    m_wusStopper = std::make_shared<WUSStopper>(m_settings, m_commonFactory.get());
    // Queue and publisher have store accesses of their own, and the store may have gone since the one above.
    m_deploymentQueue = m_commonFactory->createDeploymentQueue(createSettings());
    m_actionScheduler = createActionScheduler();
    m_autoInstallation = m_factory->createAutoInstallation(m_settings);
    m_currentOperations = m_factory->createCurrentOperations(createSettings());
    m_initialized = true;
}

std::shared_ptr<settings::Settings> TarnHandler::createSettings()
{
    auto access = m_commonFactory->createSettings([this](meridia::QrlMeridiaError_enum error) {
        return !waitForStop(storeRetryPause) && error == meridia::QrlMeridiaError_enum::ServerUnreachable;
    });
    m_storeAccesses.push_back(access);
    return access;
}

std::unique_ptr<Recovery> TarnHandler::createRecovery()
{
    const std::wstring key = m_tarnpatchSettings->recovery.enabled.key();
    std::optional<bool> isWanted = m_storeWatch->readSwitch(key);
    while (!isWanted && !waitForStop(storeRetryPause))
        isWanted = m_storeWatch->readSwitch(key);
    if (!isWanted.value_or(false))
        return nullptr;
    const auto book = std::make_shared<RequestBook>(*m_tarnpatchSettings);
    m_manager->setStartReasons(book);
    auto recovery = std::make_unique<Recovery>(m_storeWatch, book, *m_tarnpatchSettings,
        std::make_unique<HandlerRecovery>(*m_statusChangedEvent, *m_manager, *m_updaterLauncher, m_storeAccesses));
    m_actionScheduler->addTask(std::make_shared<RequestCheck>(*recovery));
    return recovery;
}

std::shared_ptr<ActionScheduler> TarnHandler::createActionScheduler()
{
    auto scheduler = m_factory->createActionScheduler();
    scheduler->addTask(std::make_shared<ScanIfExpired>(m_commonFactory.get(), m_tarnpatchSettings.get()));
    scheduler->addTask(std::make_shared<ScanAfterWindowsUpdate>(m_commonFactory.get(), m_tarnpatchSettings.get()));
    return scheduler;
}

void TarnHandler::run()
{
    VX_LOG_SCOPE();
    if (!guarded("Failed to initialize handler plugin: ", [this] { initializeHandler(); }))
        return;
    if (!waitForProfile()) {
        LogStream(Level::Warning) << "Meridia profile is not available yet.";
        return;
    }
    m_running = false;
    if (!isValid(*m_stopEvent)) {
        LogStream(Level::Error) << "Stop event handle is invalid";
        return;
    }
    // With a profile at hand the wait for it does not look at the event.
    if (waitForStop(0ms))
        return;
    if (!m_tarnpatchSettings->enabled())
        LogStream(Level::Warning) << "Tarnpatch is disabled. Waiting for it to be enabled.";
    process();
}

void TarnHandler::process()
{
    m_recovery = createRecovery();
    FirstRun(*m_commonFactory, *m_tarnpatchSettings, *m_tarnpatchStatus, *m_actionScheduler, *m_wusStopper).process();
    // Outlives the subscriptions: a change handler may start the manager until the last one is gone.
    const ScopeExit managerStop([this] { stopManager(); });
    const auto subscriptions = subscribeToChanges();
    runThreads(*subscriptions);
    guarded([this] { sync::waitForSingleObject(*m_stopEvent, sync::infinite); });
}

void TarnHandler::runThreads(Subscriptions& subscriptions)
{
    m_wusStopper->start();
    const ScopeExit stopperStop([this] { m_wusStopper->stop(); });
    if (m_recovery)
        m_recovery->answer(m_tarnpatchSettings->enabled.key());
    else
        updateEnabledStatus();
    const std::chrono::milliseconds period = pollingPeriod();
    LogStream(Level::Info) << "Scheduler period: " << period.count() << " ms.";
    LogStream(Level::Info) << "Run processing";
    {
        std::optional<RecoveryThread> recovery; // joined last
        std::optional<JoinedThread> watcher;
        const SchedulerThread actions(*m_actionScheduler, period);
        watcher.emplace([this] {
            DeploymentWatcher(*m_commonFactory, *m_tarnpatchSettings, *m_manager, *m_updaterLauncher, *m_stopEvent)
                .waitPostRebootDeployCompleted();
        });
        // A way out that is no stop must end the threads too.
        const ScopeExit end([this] { m_stopEvent->set(); });
        if (m_recovery)
            recovery.emplace(*m_recovery, subscriptions);
        m_running = true;
        waitForEvents();
    }
    m_running = false;
    LogStream(Level::Info) << "Processing stopped";
}

// An interval of nothing would keep a processor busy for as long as the plug-in runs.
std::chrono::milliseconds TarnHandler::pollingPeriod() const
{
    const std::chrono::minutes interval = m_tarnpatchSettings->scanning.automatic.pollingInterval();
    if (interval >= shortestPollingInterval)
        return interval;
    LogStream(Level::Warning) << "Polling interval of " << interval.count() << " minute(s) is too short, "
                              << shortestPollingInterval.count() << " minute(s) is used.";
    return shortestPollingInterval;
}

bool TarnHandler::hasProfile() const
{
    return HostSettings(m_settings).lastSuccessfulUpdateTimestamp() > 0;
}

bool TarnHandler::waitForProfile()
{
    do {
        bool found = false;
        guarded("Failed to read the time of the last update: ", [&] { found = hasProfile(); });
        if (found)
            return true;
    } while (!waitForStop(profilePollPause));
    return false;
}

void TarnHandler::waitForEvents()
{
    // The order decides when both are set: what has changed is published before the stop is seen.
    const common::Event* const events[] = {m_statusChangedEvent.get(), m_stopEvent.get()};
    while (*sync::waitForMultipleObjects(events) == m_statusChangedEvent.get())
        m_recovery ? publishChanges() : publishStatus();
}

void TarnHandler::publish()
{
    guarded("Failed to publish the current operations: ", [this] { m_currentOperations->update(); });
}

// What changes during the pass waits for the next change.
void TarnHandler::publishStatus()
{
    publish();
    m_statusChangedEvent->reset();
}

void TarnHandler::publishChanges()
{
    const bool isStopped = waitForStop(0ms);
    m_statusChangedEvent->reset();
    publish();
    if (!sync::waitForSingleObject(*m_statusChangedEvent, 0))
        return;
    // Changes that never pause must not put off the stop.
    if (isStopped)
        m_statusChangedEvent->reset();
    else
        LogStream(Level::Info) << "Recovery: something has changed during the pass, one more follows.";
}

bool TarnHandler::waitForStop(std::chrono::milliseconds timeout) const
{
    return sync::waitForSingleObject(*m_stopEvent, static_cast<unsigned long>(timeout.count()));
}

void TarnHandler::stop()
{
    VX_LOG_SCOPE();
    LogStream(Level::Info) << "Plugin stop requested";
    const std::lock_guard lock(m_stopMutex);
    if (isValid(*m_stopEvent))
        m_stopEvent->set();
    if (!m_initialized)
        return;
    m_actionScheduler->stop();
    m_manager->stop();
}

// A stop that came before the manager was started could not stop it.
void TarnHandler::stopManager() noexcept
{
    guarded([this] {
        const std::lock_guard lock(m_stopMutex);
        if (m_manager->isRunning())
            m_manager->stop();
    });
}

void TarnHandler::onPowerEvent(std::uint32_t type, std::uint32_t)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(type);
    if (type == PBT_APMRESUMEAUTOMATIC && m_initialized)
        m_actionScheduler->onResume();
}

} // namespace vx::tarn
