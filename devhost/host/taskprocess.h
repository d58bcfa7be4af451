#pragma once

#include "machine/machinestate.h"
#include "vxtl/handle.h"

namespace devhost::host {

/// What came of a start.
struct StartedTask {
    machine::TaskRun run;
    vx::SharedHandle process;
};

/// Starts the first action of a task as the scheduler does: variables in the path are expanded, the path stands on the
/// command line as the task has it, quoted or not, and the program begins in the system's folder unless the action
/// names another. Throws CommandError.
StartedTask startTask(const machine::ScheduledTask& task);

} // namespace devhost::host
