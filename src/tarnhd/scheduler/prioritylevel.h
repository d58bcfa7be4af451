#pragma once

namespace vx::scheduler {

// Levels 1 to 4, 1 being the most urgent, stand for spans of the Task Scheduler's priorities, 0 to 10. Any thread.

/// The most urgent priority of the level, for level 4 the least urgent one; -1 for a number that is no level.
int priorityOf(int level) noexcept;
/// 0 for a number that is no priority.
int levelOf(int priority) noexcept;

} // namespace vx::scheduler
