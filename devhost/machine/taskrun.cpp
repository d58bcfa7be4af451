#include "machine/taskrun.h"

#include "vxtl/handle.h"

#include <windows.h>

namespace devhost::machine {

TaskRun runOf(void* process, unsigned long processId)
{
    FILETIME created{}, exited, kernel, user;
    GetProcessTimes(process, &created, &exited, &kernel, &user);
    return {processId, std::uint64_t{created.dwHighDateTime} << 32 | created.dwLowDateTime};
}

namespace {

bool isRunning(const TaskRun& run)
{
    if (run.started == 0)
        return false;
    const vx::KernelHandle process(OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, run.processId));
    return process.isValid() && runOf(process.get(), run.processId) == run &&
           WaitForSingleObject(process.get(), 0) == WAIT_TIMEOUT;
}

} // namespace

TaskState stateOf(const ScheduledTask& task)
{
    if (isRunning(task.lastRun))
        return TaskState::Running;
    return task.isEnabled() ? TaskState::Ready : TaskState::Disabled;
}

} // namespace devhost::machine
