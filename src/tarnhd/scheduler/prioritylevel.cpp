#include "tarnhd/scheduler/prioritylevel.h"

namespace vx::scheduler {

namespace {

struct Level {
    int level, written, first, last;
};
constexpr Level levels[] = {{1, 0, 0, 0}, {2, 1, 1, 3}, {3, 4, 4, 6}, {4, 10, 7, 10}};

} // namespace

int priorityOf(int level) noexcept
{
    for (const Level& row : levels)
        if (row.level == level)
            return row.written;
    return -1;
}

int levelOf(int priority) noexcept
{
    for (const Level& row : levels)
        if (priority >= row.first && priority <= row.last)
            return row.level;
    return 0;
}

} // namespace vx::scheduler
