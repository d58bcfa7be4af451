#include "tarnhd/wusstopper/wuspoll.h"

#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "common/reboot/icomputerrebooter.h"
#include "common/registrykeynotifier/iregistrykeynotifier.h"
#include "common/serviceproxy/iservice.h"
#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/guarded.h"
#include "vxtl/registry.h"

#include <windows.h>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

namespace {

constexpr wchar_t serviceName[] = L"wuauserv";

bool isSet(const common::Event& event)
{
    return sync::waitForSingleObject(event, 0);
}

} // namespace

WUSPoll::WUSPoll(const std::shared_ptr<settings::Settings>& settings, common::CommonFactory* commonFactory,
    const WUSStopperOptions& options)
    : m_commonFactory(commonFactory), m_options(options), m_registry(commonFactory->createRegistry()),
      m_service(commonFactory->createServiceProxy(serviceName)), m_notifier(commonFactory->createRegistryKeyNotifier()),
      m_forcedReboot(settings, m_registry, commonFactory->createComputerRebooter(), options.now)
{}

WUSPoll::~WUSPoll() = default;

void WUSPoll::pollThread(const Events& events)
{
    guarded([&] {
        while (round(events)) {
        }
    });
    LogStream(Level::Info) << "WUS poll thread exited";
}

// Each step for itself: a service that can't be stopped must not keep the reboot from coming.
bool WUSPoll::round(const Events& events)
{
    guarded([&] { stopIfRequired(events); });
    return pollStatusWait(events) && !guarded([this] { return m_forcedReboot.handleForcedReboot(); });
}

void WUSPoll::stopIfRequired(const Events& events)
{
    m_stopRequired = m_stopRequired || resolveIfStopRequired();
    if (m_stopRequired)
        stopService(events);
}

bool WUSPoll::resolveIfStopRequired()
{
    return guarded([this] {
        const bool found = m_registry->doesKeyExist(triggerKey);
        LogStream(Level::Info) << "WUS stopper trigger key found as: " << found;
        return found;
    });
}

bool WUSPoll::stopService(const Events& events)
{
    if (m_service->getState() != ServiceState::Running) {
        LogStream(Level::Info) << "WUS not running";
        return true;
    }
    LogStream(Level::Info) << "Will try to stop WUS";
    const auto timeout = m_options.serviceStopWait;
    if (m_service->beginStop(timeout, common::ServiceWait::Yes).wait(&events.stop))
        return true;
    // A wait that our own stop has cut short says nothing about the service.
    if (!isSet(events.stop))
        LogStream(Level::Error) << "Error: failed to stop WUS service in "
                                << std::chrono::duration_cast<std::chrono::seconds>(timeout).count() << " seconds";
    return false;
}

bool WUSPoll::pollStatusWait(const Events& events)
{
    if (m_stopRequired)
        return waitForPollPeriod(events);
    bool goOn = true;
    if (guarded([&] { goOn = waitForRegistryChange(events); }))
        return goOn;
    // An open key that was deleted is never one to watch again, whatever is made under its name.
    m_notifier = m_commonFactory->createRegistryKeyNotifier();
    return waitForPollPeriod(events);
}

bool WUSPoll::waitForPollPeriod(const Events& events)
{
    if (sync::waitForSingleObject(events.stop, static_cast<unsigned long>(m_options.pollPeriod.count()))) {
        LogStream(Level::Debug) << "Stop signalled, exiting";
        return false;
    }
    LogStream(Level::Debug) << "Time to poll WUS status.";
    return true;
}

bool WUSPoll::waitForRegistryChange(const Events& events)
{
    prepareRegistryWaitHandle(events);
    // The order decides when both are set.
    const common::Event* const awaited[] = {&events.stop, &events.registry};
    const auto fired = sync::waitForMultipleObjects(awaited);
    if (fired == std::end(awaited)) {
        LogStream(Level::Warning) << "Unexpected wait state for registry change notification";
        return waitForPollPeriod(events);
    }
    if (*fired == &events.stop) {
        LogStream(Level::Info) << "Thread stop event signaled";
        return false;
    }
    LogStream(Level::Info) << "Registry changed, check if WUS should be stopped";
    return true;
}

void WUSPoll::prepareRegistryWaitHandle(const Events& events)
{
    m_notifier->initialize(HKEY_LOCAL_MACHINE, watchedKey, KEY_NOTIFY);
    m_notifier->notifyChangeKeyValue(REG_NOTIFY_CHANGE_NAME, events.registry);
    LogStream(Level::Debug) << "Prepared registry change notification handle";
    // A key that came after the look at it and before this is no change any more.
    if (m_registry->doesKeyExist(triggerKey))
        events.registry.set();
}

} // namespace vx::tarn
