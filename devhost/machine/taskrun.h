#pragma once

#include "machine/machinestate.h"
#include "vxtl/enumtext.h"

namespace devhost::machine {

/// What a running process (native handle, borrowed) is remembered by.
TaskRun runOf(void* process, unsigned long processId);

/// By the scheduler's numbers.
enum class TaskState { Disabled = 1, Ready = 3, Running = 4 };

inline constexpr auto taskStateTexts = vx::enumTexts<TaskState>(
    {{TaskState::Disabled, "disabled"}, {TaskState::Ready, "ready"}, {TaskState::Running, "running"}});
constexpr vx::EnumTexts textsOf(TaskState)
{
    return {"TaskState", taskStateTexts};
}

/// A task is running as long as its process is there and has not ended.
TaskState stateOf(const ScheduledTask& task);

} // namespace devhost::machine
