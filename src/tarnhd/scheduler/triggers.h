#pragma once

#include <memory>
#include <vector>

struct ITaskDefinition;

namespace vx::scheduler {

class Trigger;

/// Has the task start by these triggers and no others. False after a failure, which is logged; the task is then left
/// with some of the triggers.
bool replaceTriggers(ITaskDefinition& definition, const std::vector<std::shared_ptr<Trigger>>& triggers);

} // namespace vx::scheduler
