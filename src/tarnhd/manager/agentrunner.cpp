#include "tarnhd/manager/agentrunner.h"

#include "common/event/event.h"
#include "common/exitstatus/exitstatus.h"
#include "common/factory/commonfactory.h"
#include "common/process/iprocess.h"
#include "common/utils/productplaces.h"
#include "tarnhd/startreasons/latestreason.h"
#include "vxtl-process/process/credentials.h"
#include "vxtl/exception.h"
#include "vxtl/guarded.h"
#include "vxtl/registry.h"
#include "vxtl/scopeexit.h"

#include <array>
#include <filesystem>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

namespace {

class WaitableHandle : public IWaitable {
public:
    explicit WaitableHandle(SharedHandle handle) : m_handle(std::move(handle)) {}
    void* getHandle() const override { return m_handle->get(); }

private:
    const SharedHandle m_handle;
};

} // namespace

// The log names these operations after the manager that they belong to.
#define MANAGER_SCOPE(name) const logging::LogScope scope("vx::tarn::TarnpatchManager::" name)

AgentRunner::AgentRunner(const TarnpatchSettings& settings, const TarnpatchStatus& status,
    common::CommonFactory* commonFactory, std::shared_ptr<common::Event> startEvent,
    std::chrono::milliseconds retryPause, WallClock now)
    : m_commonFactory(commonFactory), m_status(status), m_startEvent(std::move(startEvent)), m_retryPause(retryPause),
      m_reasons(std::make_shared<LatestReason>(settings)), m_now(std::move(now))
{}

void AgentRunner::actionThread(common::Event& stopEvent)
{
    MANAGER_SCOPE("actionThread");
    const std::array<IWaitable*, 2> waitSet{&stopEvent, m_startEvent.get()};
    guarded("Exception caught: ", [&] {
        for (bool goOn = true; goOn;) {
            LogStream(Level::Info) << "Waiting for event...";
            const auto fired = sync::waitForMultipleObjects(waitSet);
            if (fired == waitSet.begin()) {
                LogStream(Level::Info) << "Thread stop event signaled";
                goOn = false;
            } else if (fired == waitSet.begin() + 1) {
                guarded("Exception caught: ", [&] { goOn = startEventSignaled(stopEvent); });
            } else {
                LogStream(Level::Warning) << "Unexpected wait state, exiting thread";
                goOn = false;
            }
        }
    });
    LogStream(Level::Info) << "Tarnpatch action thread exited";
}

bool AgentRunner::startEventSignaled(common::Event& stopEvent)
{
    m_startEvent->reset();
    LogStream(Level::Info) << "tarnag.exe start event signaled.";
    const auto round = m_reasons->take();
    LogStream(Level::Info) << "Start reason is: " << static_cast<std::int32_t>(round->reason());
    return agentStartRequested(*round, stopEvent);
}

bool AgentRunner::agentStartRequested(StartReasons::Round& round, common::Event& stopEvent)
{
    MANAGER_SCOPE("agentStartRequested");
    const auto pause = static_cast<unsigned long>(m_retryPause.count());
    std::int32_t attempt = 0;
    Result result = Result::AlreadyRunning;
    while (result == Result::AlreadyRunning && attempt < m_maxRetries) {
        const std::int64_t timestamp = m_now() / ticksPerSecond;
        LogStream(Level::Info) << "tarnag.exe start timestamp: " << timestamp;
        result = startAgent(round, stopEvent);
        if (result == Result::Finished) {
            LogStream(Level::Info) << "Tarnag agent finished successfully. Updating last successfull start timestamp.";
            storeLastStartTimestamp(timestamp);
        } else if (result == Result::Failed) {
            LogStream(Level::Error) << "Failed to start tarnpatch agent (tarnag.exe)";
        } else {
            LogStream(Level::Info) << "Tarnag agent has been already started.";
            if (sync::waitForSingleObject(stopEvent, pause)) {
                LogStream(Level::Info) << "Thread stop event signaled";
                return false;
            }
            ++attempt;
            LogStream(Level::Info) << "Scheduling next try to run tarnag.exe (" << attempt + 1 << "/" << m_maxRetries
                                   << ")";
        }
    }
    return true;
}

AgentRunner::Result AgentRunner::startAgent(StartReasons::Round& round, common::Event& stopEvent)
{
    MANAGER_SCOPE("startAgent");
    Result result = Result::Failed;
    guardedAgainst<BaseException>(
        "Failed to start tarnpatch agent. Exception caught: ", [&] { result = runAgent(round, stopEvent); });
    return result;
}

AgentRunner::Result AgentRunner::runAgent(StartReasons::Round& round, common::Event& stopEvent)
{
    const auto process = m_commonFactory->createProcess();
    const std::wstring args = arguments();
    if (!startProcess(*process, args)) {
        LogStream(Level::Error) << "Failed to start tarnag.exe process.";
        return Result::Failed;
    }
    useUpArguments(args);
    // A late thread may still count when the next one does: a flag would be cleared under the other's agent.
    ++m_agentsWaitedFor;
    const ScopeExit waitedFor([this] { --m_agentsWaitedFor; });
    const WaitableHandle agent(process->getHandle());
    const std::array<const IWaitable*, 2> waitSet{&stopEvent, &agent};
    if (sync::waitForMultipleObjects(waitSet) == waitSet.begin()) {
        LogStream(Level::Info) << "Thread stop event detected while tarnag running. Tarnag will continue working, but "
                                  "thread will be finished";
        return Result::Finished;
    }
    const std::uint32_t code = process->getReturnCode();
    LogStream(Level::Info) << "Process finished with return code: " << code;
    // Before the code is looked at: a remote request is answered by a failed run and by a busy agent, too.
    round.close();
    const common::ExitStatus status(static_cast<std::int32_t>(code), {});
    if (status == common::exitstatus::success)
        return Result::Finished;
    return status == common::exitstatus::resourceAlreadyExists ? Result::AlreadyRunning : Result::Failed;
}

bool AgentRunner::startProcess(common::IProcess& process, const std::wstring& args)
{
    const auto key = m_commonFactory->createRegistry()->openKey(common::installationKey);
    const std::wstring directory = key->getStringValue(common::installationDirectory);
    const std::wstring path = (std::filesystem::path(directory) / L"tarnag.exe").wstring();
    LogStream(Level::Info) << "Starting process " << path << ". Arguments: " << args;
    return process.start(path, args, process::Credentials{});
}

void AgentRunner::loadLastStartTimestamp()
{
    const std::lock_guard lock(m_timestampMutex);
    m_lastStartTimestamp = m_status.scanning.lastScanning.timestamp();
}

void AgentRunner::storeLastStartTimestamp(std::int64_t timestamp)
{
    {
        const std::lock_guard lock(m_timestampMutex);
        m_lastStartTimestamp = timestamp;
    }
    m_status.scanning.lastScanning.timestamp.set(timestamp);
}

void AgentRunner::setArguments(const std::wstring& args)
{
    const std::lock_guard lock(m_argumentsMutex);
    replaceArguments(args);
}

void AgentRunner::replaceArguments(const std::wstring& args)
{
    MANAGER_SCOPE("setArguments");
    VX_LOG_VALUES(args);
    m_arguments = args;
}

// Those that were set while the process was being started are for the next one.
void AgentRunner::useUpArguments(const std::wstring& used)
{
    const std::lock_guard lock(m_argumentsMutex);
    if (m_arguments == used)
        replaceArguments(L"");
}

std::wstring AgentRunner::arguments() const
{
    const std::lock_guard lock(m_argumentsMutex);
    return m_arguments;
}

} // namespace vx::tarn
