#include "bench/comparison.h"
#include "tarnhd/actionscheduler/taskscheduler.h"

#include <condition_variable>
#include <cstdio>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

namespace {

using std::chrono::milliseconds;

constexpr std::size_t taskCount = 1000;

struct NoTask : Vx::Task {
    NoTask() : Task("bench", false) {}
    void run() override {}
};

/// The floor: the same queue, sorted anew behind each appended task.
class SortedQueue {
public:
    vx::Ticks schedule(std::unique_ptr<Vx::Task> task, milliseconds delay)
    {
        const std::lock_guard lock(m_mutex);
        const vx::Ticks due = vx::systemTicks() + delay.count() * vx::ticksPerMillisecond;
        m_tasks.push_back({due, std::move(task)});
        m_tasks.sort([](const Entry& a, const Entry& b) { return a.due < b.due; });
        m_condition.notify_one();
        return due;
    }

private:
    struct Entry {
        vx::Ticks due;
        std::unique_ptr<Vx::Task> task;
    };
    std::mutex m_mutex;
    std::condition_variable m_condition;
    std::list<Entry> m_tasks;
};

/// One repeat fills a queue; making and clearing the queue and the tasks is not measured.
template <typename Schedule>
bench::Measure filling(const std::vector<milliseconds>& delays, Schedule schedule)
{
    return [&delays, schedule] {
        std::vector<std::unique_ptr<Vx::Task>> tasks;
        for (std::size_t i = 0; i < delays.size(); ++i)
            tasks.push_back(std::make_unique<NoTask>());
        return schedule(tasks, delays);
    };
}

template <typename Queue, typename Call>
double timed(std::vector<std::unique_ptr<Vx::Task>>& tasks, const std::vector<milliseconds>& delays, Call call)
{
    Queue queue;
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < delays.size(); ++i)
        bench::keep(call(queue, std::move(tasks[i]), delays[i]));
    const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - start;
    return elapsed.count() / static_cast<double>(delays.size());
}

void compare(bench::Comparison& table, const std::string& title, const std::vector<milliseconds>& delays)
{
    const auto floor = filling(delays, [](auto& tasks, const auto& d) {
        return timed<SortedQueue>(tasks, d, [](SortedQueue& queue, std::unique_ptr<Vx::Task> task, milliseconds delay) {
            return queue.schedule(std::move(task), delay);
        });
    });
    const auto ours = filling(delays, [](auto& tasks, const auto& d) {
        return timed<Vx::TaskScheduler>(
            tasks, d, [](Vx::TaskScheduler& queue, std::unique_ptr<Vx::Task> task, milliseconds delay) {
                return queue.schedule(std::move(task), delay, milliseconds(0));
            });
    });
    table.row(title, floor, ours, bench::Reach::timeUpTo(1.0 / 15));
}

} // namespace

int main()
{
    bench::Comparison table("Scheduling 1000 tasks, per task, beside append and stable sort");
    std::mt19937 random(1);
    std::vector<milliseconds> delays(taskCount);
    for (milliseconds& delay : delays)
        delay = milliseconds(1'000'000 + random() % 10'000'000);
    compare(table, "random due times", delays);
    delays.assign(taskCount, milliseconds(1'000'000));
    compare(table, "the same delay", delays);
    return table.exitCode();
}
