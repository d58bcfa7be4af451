#pragma once

#include "vxtl-com/comptr.h"

struct IExecAction;
struct ITaskDefinition;

namespace vx::scheduler {

enum class MissingAction { Accept, Create };

/// The first of a task's actions that starts a program. None when there is none to be had; failures are logged.
com::ComPtr<IExecAction> findExecAction(ITaskDefinition& definition, MissingAction missing);

} // namespace vx::scheduler
