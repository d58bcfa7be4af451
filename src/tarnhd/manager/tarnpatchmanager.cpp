#include "tarnhd/manager/tarnpatchmanager.h"

#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "common/utils/objectnames.h"
#include "tarnhd/manager/agentrunner.h"
#include "tarnhd/threads/pinnedthread.h"
#include "vxtl/globalmutex.h"
#include "vxtl/guarded.h"

#include <windows.h>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

TarnpatchManager::TarnpatchManager(const std::shared_ptr<settings::Settings>& settings,
    common::CommonFactory* commonFactory, std::chrono::milliseconds retryPause, std::chrono::milliseconds stopTimeout,
    WallClock now)
    : m_commonFactory(commonFactory), m_settings(settings), m_status(settings),
      m_startEvent(commonFactory->createEvent(
          false, false, common::startEventName, false, sync::accessibleSecurityDescriptor())),
      m_stopEvent(createStopEvent()), m_runner(std::make_shared<AgentRunner>(m_settings, m_status, commonFactory,
                                          m_startEvent, retryPause, std::move(now))),
      m_stopTimeout(stopTimeout)
{}

TarnpatchManager::~TarnpatchManager()
{
    // A start may come after the handler's stop, when that hits the handler while it is still starting up.
    if (m_actionThread)
        guarded("Exception caught: ", [this] { TarnpatchManager::stop(); });
}

std::shared_ptr<common::Event> TarnpatchManager::createStopEvent() const
{
    return m_commonFactory->createEvent(true, false, L"", false, nullptr);
}

bool TarnpatchManager::update()
{
    VX_LOG_SCOPE();
    // Without it one that has read "on" could start behind the stop of one that has read "off".
    const std::lock_guard lock(m_updateMutex);
    if (m_status.enabled() && !m_settings.installation.completion.wait()) {
        LogStream(Level::Debug) << "Tarnpatch manager start requested";
        return start();
    }
    LogStream(Level::Debug) << "Tarnpatch manager stop requested";
    return stop();
}

bool TarnpatchManager::start()
{
    VX_LOG_SCOPE();
    if (m_running) {
        LogStream(Level::Warning) << "Tarnpatch agent is already running";
        return false;
    }
    const std::lock_guard lock(m_threadMutex);
    if (m_actionThread) {
        LogStream(Level::Warning) << "Action thread already exists";
        return false;
    }
    if (!resetEvents())
        return false;
    m_runner->loadLastStartTimestamp();
    LogStream(Level::Debug) << "Starting action thread";
    m_actionThread = std::make_shared<PinnedThread>(
        [runner = m_runner, stopEvent = m_stopEvent] { runner->actionThread(*stopEvent); });
    m_running = true;
    return true;
}

bool TarnpatchManager::resetEvents()
{
    if (!m_startEvent->reset()) {
        LogStream(Level::Error) << "Failed to reset start event. Last error code: " << GetLastError();
        return false;
    }
    if (!m_stopEvent->reset()) {
        LogStream(Level::Error) << "Failed to reset stop event. Last error code: " << GetLastError();
        return false;
    }
    return true;
}

bool TarnpatchManager::stop()
{
    VX_LOG_SCOPE();
    const std::lock_guard lock(m_threadMutex);
    if (!m_actionThread) {
        LogStream(Level::Warning) << "Action thread doesn't exist";
        return false;
    }
    if (!m_stopEvent->set()) {
        LogStream(Level::Error) << "Failed to set stop event. Last error code: " << GetLastError();
        return false;
    }
    if (!sync::waitForSingleObject(*m_actionThread, static_cast<unsigned long>(m_stopTimeout.count()))) {
        LogStream(Level::Warning) << "TarnpatchManager action thread was not finished during "
                                  << std::chrono::duration_cast<std::chrono::seconds>(m_stopTimeout).count() << " sec.";
        // The late thread keeps its event, set for good: the next start must not call it back.
        m_stopEvent = createStopEvent();
    }
    m_actionThread.reset();
    m_running = false;
    return true;
}

bool TarnpatchManager::isRunning() const
{
    return m_running;
}

bool TarnpatchManager::isAgentRunning() const
{
    return m_runner->isAgentRunning();
}

void TarnpatchManager::setArguments(const std::wstring& args)
{
    m_runner->setArguments(args);
}

void TarnpatchManager::setStartReason(AgentStartReason reason)
{
    m_runner->startReasons().set(reason);
}

AgentStartReason TarnpatchManager::getStartReason() const
{
    return m_runner->startReasons().get();
}

void TarnpatchManager::setStartReasons(std::shared_ptr<StartReasons> reasons)
{
    m_runner->setStartReasons(std::move(reasons));
}

} // namespace vx::tarn
