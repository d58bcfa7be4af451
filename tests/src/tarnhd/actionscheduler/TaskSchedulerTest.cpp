#include "tarnhd/taskscheduler.h"

#include "support/fakeclock.h"
#include "support/record.h"

#include <gmock/gmock.h>

#include <limits>
#include <thread>

namespace Vx {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using vx::tarn::Ticks;

class TaskSchedulerTest : public testing::Test {
protected:
    ~TaskSchedulerTest() override { scheduler.stop(); }

    Ticks schedule(const std::string& name, std::int64_t delay)
    {
        return scheduler.schedule(std::make_unique<FuncTask>(name, false, [this, name] { record.add(name); }),
            milliseconds(delay), milliseconds(0));
    }
    void startLoop()
    {
        loop = std::jthread([this] { scheduler.run(); });
    }
    /// Takes what is due by then.
    std::vector<std::string> take(std::size_t count, std::int64_t after)
    {
        clock.advance(milliseconds(after));
        std::vector<std::string> names;
        while (names.size() < count)
            names.push_back(scheduler.takeNext()->name());
        return names;
    }

    support::FakeClock clock;
    support::Record record;
    TaskScheduler scheduler{clock.function()};
    std::jthread loop;
};

TEST_F(TaskSchedulerTest, keepsTheOrderOfAStableSort)
{
    char name = 'a';
    for (const int delay : {3000, 1000, 2000, 1000, 3000, 2000})
        schedule(std::string(1, name++), delay);
    EXPECT_THAT(take(6, 3000), ElementsAre("b", "d", "c", "f", "a", "e"));
}

TEST_F(TaskSchedulerTest, defersWhatIsDueSooner)
{
    schedule("late", 9000);
    schedule("soon", 1000);
    schedule("sooner", 500);
    scheduler.deferAtLeast(milliseconds(4000));
    schedule("between", 3999);
    EXPECT_THAT(take(3, 4000), ElementsAre("between", "sooner", "soon"));
    schedule("before late", 4000);
    EXPECT_THAT(take(2, 5000), ElementsAre("before late", "late"));
}

TEST_F(TaskSchedulerTest, saturatesWhatDoesNotFit)
{
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(schedule("a", most), most);
    EXPECT_EQ(schedule("c", std::numeric_limits<std::int64_t>::min()), std::numeric_limits<Ticks>::min() + clock.now);
    startLoop();
    EXPECT_THAT(record.waitFor(1), ElementsAre("c"));
    clock.now = -1000;
    scheduler.deferAtLeast(milliseconds(0));
    schedule("d", 0);
    EXPECT_THAT(record.waitFor(2), ElementsAre("c", "d"));
}

TEST_F(TaskSchedulerTest, stopsBehindTheRunningTask)
{
    scheduler.schedule(std::make_unique<FuncTask>("call", false, [this] { scheduler.stop(); }), {}, {});
    schedule("left", 0);
    scheduler.run();
    EXPECT_EQ(record.size(), 0u);
}

TEST_F(TaskSchedulerTest, takesTasksOfManyThreads)
{
    startLoop();
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this] {
            for (int i = 0; i < 50; ++i) {
                schedule("kept", 0);
                schedule("dropped", 1'000'000);
                scheduler.deferAtLeast(milliseconds(0));
                scheduler.cancel("dropped", 0);
            }
        });
    EXPECT_EQ(record.waitFor(200).size(), 200u);
}

} // namespace
} // namespace Vx
