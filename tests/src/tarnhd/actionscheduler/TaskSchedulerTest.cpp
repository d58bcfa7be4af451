#include "tarnhd/actionscheduler/taskscheduler.h"

#include "support/fakeclock.h"
#include "support/record.h"

#include <algorithm>
#include <limits>
#include <set>
#include <thread>

namespace Vx {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using vx::Ticks;
using vx::ticksPerMillisecond;

class TaskSchedulerTest : public testing::Test {
protected:
    ~TaskSchedulerTest() override { scheduler.stop(); }
    Ticks schedule(const std::string& name, std::int64_t delay, bool unique = false, std::int64_t range = 0)
    {
        return scheduler.schedule(std::make_unique<FuncTask>(name, unique, [this, name] { record.add(name); }),
            milliseconds(delay), milliseconds(range));
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
    std::mt19937 random(7);
    for (unsigned i = 0; i < 300; ++i) {
        const unsigned delay = random() % 20 * 1000;
        schedule(std::to_string(100'000 + delay + i), delay);
    }
    EXPECT_TRUE(std::ranges::is_sorted(take(300, 20'000)));
}

TEST_F(TaskSchedulerTest, keepsOneUniqueTaskPerNameTheEarlierOne)
{
    const Ticks start = clock.now;
    schedule("a", 2000);
    EXPECT_EQ(schedule("u", 5000, true), start + 5000 * ticksPerMillisecond);
    EXPECT_EQ(schedule("u", 7000, true), start + 5000 * ticksPerMillisecond);
    EXPECT_EQ(schedule("u", 2000, true), start + 2000 * ticksPerMillisecond);
    schedule("b", 2000);
    EXPECT_EQ(schedule("u", 1500, true), start + 1500 * ticksPerMillisecond);
    schedule("u", 1000); // not unique itself, so it is no replacement
    EXPECT_THAT(take(4, 2000), ElementsAre("u", "u", "a", "b"));
    EXPECT_EQ(scheduler.cancel("u", 0), 0u);
}

TEST_F(TaskSchedulerTest, cancelsTheEarliestOfANameUpToALimit)
{
    for (const int delay : {3000, 1000, 2000}) {
        schedule("x", delay);
        schedule("y" + std::to_string(delay), delay);
    }
    EXPECT_EQ(scheduler.cancel("x", 2), 2u);
    EXPECT_THAT(take(3, 3000), ElementsAre("y1000", "y2000", "x"));
    schedule("y3000", 1);
    EXPECT_EQ(scheduler.cancel("y3000", 0), 2u);
}

TEST_F(TaskSchedulerTest, defersWhatIsDueSooner)
{
    schedule("late", 9000);
    schedule("soon", 1000);
    schedule("sooner", 500);
    clock.advance(milliseconds(700));
    scheduler.deferAtLeast(milliseconds(4000));
    schedule("between", 3999);
    EXPECT_THAT(take(3, 4000), ElementsAre("between", "sooner", "soon"));
    schedule("before late", 4000);
    EXPECT_THAT(take(2, 5000), ElementsAre("before late", "late"));
}

TEST_F(TaskSchedulerTest, addsARandomTimeWithBothEnds)
{
    const Ticks start = clock.now;
    std::set<Ticks> seen;
    for (int i = 0; i < 400; ++i)
        seen.insert((schedule("r", 1000, false, 3) - start) / ticksPerMillisecond);
    EXPECT_THAT(seen, ElementsAre(1000, 1001, 1002, 1003));
}

TEST_F(TaskSchedulerTest, saturatesWhatDoesNotFit)
{
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(schedule("a", most), most);
    EXPECT_EQ(schedule("b", most, false, most), most);
    EXPECT_EQ(schedule("c", std::numeric_limits<std::int64_t>::min()), std::numeric_limits<Ticks>::min() + clock.now);
    startLoop();
    EXPECT_THAT(record.waitFor(1), ElementsAre("c"));
    clock.now = -1000;
    scheduler.deferAtLeast(milliseconds(0));
    schedule("d", 0);
    EXPECT_THAT(record.waitFor(2), ElementsAre("c", "d"));
}

// Around the ends of a time_t of 32 bits, with and without a sign; before the epoch; far away.
TEST_F(TaskSchedulerTest, runsNothingEarlyInAnyYear)
{
    const Ticks real = vx::systemTicks();
    for (const std::int64_t second :
        {2'147'483'647LL, 2'147'483'648LL, 4'102'444'800LL, 4'294'967'296LL, -2'147'483'649LL, 900'000'000'000LL}) {
        SCOPED_TRACE(second);
        const auto now = [offset = second * vx::ticksPerSecond - real] { return vx::systemTicks() + offset; };
        TaskScheduler shifted(now);
        const auto scheduleIn = [&](int delay) {
            return shifted.schedule(
                std::make_unique<FuncTask>(std::to_string(delay), false, [] {}), milliseconds(delay), milliseconds(0));
        };
        const Ticks due = scheduleIn(2);
        scheduleIn(0);
        EXPECT_EQ(shifted.takeNext()->name(), "0");
        EXPECT_EQ(shifted.takeNext()->name(), "2");
        EXPECT_GE(now(), due);
    }
}

TEST_F(TaskSchedulerTest, followsAClockThatIsSetBackAndForth)
{
    constexpr std::chrono::hours years(24 * 3652);
    startLoop();
    schedule("in an hour", 3'600'000);
    clock.advance(-years);
    schedule("at once", 0);
    EXPECT_THAT(record.waitFor(1), ElementsAre("at once"));
    clock.advance(years + std::chrono::hours(1));
    scheduler.deferAtLeast(milliseconds(0));
    EXPECT_THAT(record.waitFor(2), ElementsAre("at once", "in an hour"));
}

TEST_F(TaskSchedulerTest, stopsBehindTheRunningTaskAndRestartsEmpty)
{
    const auto stopFromWithin = [this] {
        schedule("from within", 0);
        scheduler.stop();
        record.add("stopping");
    };
    scheduler.schedule(std::make_unique<FuncTask>("call", false, stopFromWithin), milliseconds(0), milliseconds(0));
    schedule("left", 0);
    startLoop();
    loop.join();
    EXPECT_THAT(record.waitFor(1), ElementsAre("stopping"));
    EXPECT_TRUE(scheduler.isStopped());

    scheduler.restart();
    EXPECT_FALSE(scheduler.isStopped());
    EXPECT_EQ(scheduler.cancel("left", 0), 0u);
    startLoop();
    schedule("fresh", 0);
    EXPECT_THAT(record.waitFor(2), ElementsAre("stopping", "fresh"));
}

} // namespace
} // namespace Vx
