#include "tarnhd/actionscheduler/taskscheduler.h"

#include "vxtl/guarded.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Vx {

using vx::saturatingAdd;
using vx::saturatingSubtract;
using vx::Ticks;
using vx::ticksPerMillisecond;

namespace {

// One wait never lasts longer, so that a clock that is set forward meanwhile is noticed.
constexpr std::chrono::milliseconds longestWait = std::chrono::hours(24);

constexpr Ticks toTicks(std::chrono::milliseconds duration)
{
    return vx::saturatingMultiply(duration.count(), ticksPerMillisecond);
}

// A uniform number from 0 to `range`, both included. Values behind the largest multiple of the number of
// outcomes are drawn anew: with them the low outcomes would come more often.
std::uint64_t drawUpTo(std::mt19937& random, std::uint64_t range)
{
    const bool wide = range > random.max();
    const std::uint64_t top = wide ? std::numeric_limits<std::uint64_t>::max() : random.max();
    const auto draw = [&]() -> std::uint64_t {
        const std::uint64_t low = random();
        return wide ? (std::uint64_t{random()} << 32) | low : low;
    };
    if (range == top)
        return draw();
    const std::uint64_t outcomes = range + 1;
    const std::uint64_t end = top - top % outcomes;
    std::uint64_t value = draw();
    while (value >= end)
        value = draw();
    return value % outcomes;
}

} // namespace

TaskScheduler::TaskScheduler(vx::WallClock clock) : m_random(std::random_device{}()), m_clock(std::move(clock)) {}

TaskScheduler::~TaskScheduler() = default;

Ticks TaskScheduler::schedule(
    std::unique_ptr<Task> task, std::chrono::milliseconds delay, std::chrono::milliseconds randomRange)
{
    // Declared before the lock: a task that isn't kept is destroyed outside it.
    Entries fresh;
    fresh.push_back({0, std::move(task)});
    Entry& entry = fresh.front();
    const std::lock_guard lock(m_mutex);
    Ticks span = toTicks(delay);
    if (randomRange.count() > 0) {
        const auto drawn = drawUpTo(m_random, static_cast<std::uint64_t>(randomRange.count()));
        span = saturatingAdd(span, toTicks(std::chrono::milliseconds(drawn)));
    }
    entry.due = saturatingAdd(m_clock(), span);
    if (entry.task->isUnique()) {
        const auto queued = std::find_if(m_tasks.begin(), m_tasks.end(),
            [&](const Entry& other) { return other.task->name() == entry.task->name(); });
        if (queued != m_tasks.end())
            return replaceUnique(queued, fresh);
    }
    return insert(fresh);
}

// Both tasks go into `fresh`: the one that is replaced stays there and dies outside the lock.
Ticks TaskScheduler::replaceUnique(Entries::iterator queued, Entries& fresh)
{
    if (fresh.front().due >= queued->due)
        return queued->due;
    fresh.splice(fresh.end(), m_tasks, queued);
    return insert(fresh);
}

// Looking from the back stops behind the entries of the same due time, where a stable sort would put an
// appended entry.
Ticks TaskScheduler::insert(Entries& fresh)
{
    const Ticks due = fresh.front().due;
    auto position = m_tasks.end();
    while (position != m_tasks.begin() && std::prev(position)->due > due)
        --position;
    m_tasks.splice(position, fresh, fresh.begin());
    m_condition.notify_one();
    return due;
}

std::size_t TaskScheduler::cancel(const std::string& name, std::size_t maxCount)
{
    Entries removed;
    const std::lock_guard lock(m_mutex);
    for (auto it = m_tasks.begin(); it != m_tasks.end() && (maxCount == 0 || removed.size() < maxCount);) {
        const auto entry = it++;
        if (entry->task->name() == name)
            removed.splice(removed.end(), m_tasks, entry);
    }
    if (!removed.empty())
        m_condition.notify_one();
    return removed.size();
}

void TaskScheduler::deferAtLeast(std::chrono::milliseconds delay)
{
    const std::lock_guard lock(m_mutex);
    const Ticks earliest = saturatingAdd(m_clock(), toTicks(delay));
    for (Entry& entry : m_tasks) {
        if (entry.due >= earliest)
            break;
        entry.due = earliest;
    }
    m_condition.notify_one();
}

// Rounded up: a wait that ended before the due time would be followed by another one.
std::chrono::milliseconds TaskScheduler::untilFirstDue() const
{
    const Ticks remaining = saturatingSubtract(m_tasks.front().due, m_clock());
    return std::chrono::milliseconds(remaining / ticksPerMillisecond + (remaining % ticksPerMillisecond > 0));
}

std::unique_ptr<Task> TaskScheduler::takeNext()
{
    std::unique_lock lock(m_mutex);
    // Whatever has ended a wait, queue and clock are looked at anew: the clock can be set back meanwhile.
    while (!m_stopped) {
        if (m_tasks.empty()) {
            m_condition.wait(lock);
            continue;
        }
        const std::chrono::milliseconds remaining = untilFirstDue();
        if (remaining.count() <= 0) {
            std::unique_ptr<Task> task = std::move(m_tasks.front().task);
            m_tasks.pop_front();
            return task;
        }
        m_condition.waitFor(lock, std::min(remaining, longestWait));
    }
    return nullptr;
}

void TaskScheduler::run()
{
    while (!isStopped())
        if (const std::unique_ptr<Task> task = takeNext())
            vx::guarded("Exception caught: ", [&] { task->run(); });
}

void TaskScheduler::stop()
{
    const std::lock_guard lock(m_mutex);
    m_stopped = true;
    m_condition.notify_all();
}

bool TaskScheduler::isStopped() const
{
    const std::lock_guard lock(m_mutex);
    return m_stopped;
}

void TaskScheduler::restart()
{
    Entries dropped;
    const std::lock_guard lock(m_mutex);
    dropped.swap(m_tasks);
    m_stopped = false;
    m_condition.notify_all();
}

} // namespace Vx
