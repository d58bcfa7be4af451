#include "tarnhd/actionscheduler.h"

#include "support/fakeclock.h"
#include "support/logcapture.h"
#include "support/record.h"

#include <gmock/gmock.h>

#include <future>

namespace vx::tarn {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;

struct FuncAction : ActionBase {
    explicit FuncAction(std::function<void()> f) : function(std::move(f)) {}
    common::ExitStatus execute() override
    {
        function();
        return {0, L"done"};
    }
    std::function<void()> function;
};

class ActionSchedulerTest : public testing::Test {
protected:
    ~ActionSchedulerTest() override { stop(); }

    void start()
    {
        running = std::async(std::launch::async, [this] { scheduler.start(period, true); });
    }
    void stop()
    {
        scheduler.stop();
        if (running.valid())
            running.get();
    }
    std::shared_ptr<ActionBase> action(const std::string& name)
    {
        return std::make_shared<FuncAction>([this, name] { record.add(name); });
    }
    /// Waits for the end of the task that is running, by one behind it: a tick renews itself at its end.
    void settle()
    {
        std::promise<void> settled;
        scheduler.runOnce(std::make_shared<FuncAction>([&] { settled.set_value(); }), milliseconds(0));
        ASSERT_EQ(settled.get_future().wait_for(support::deadline), std::future_status::ready);
    }
    void wake(milliseconds after)
    {
        clock.advance(after);
        scheduler.onResume();
    }

    support::LogCapture log;
    support::FakeClock clock;
    support::Record record;
    milliseconds period{600'000};
    ActionScheduler scheduler{clock.function()};
    std::future<void> running;
};

TEST_F(ActionSchedulerTest, countsThePeriodFromTheEndOfARound)
{
    scheduler.addTask(std::make_shared<FuncAction>([this] {
        record.add("first");
        clock.advance(period);
    }));
    scheduler.addTask(action("second"));
    start();
    record.waitFor(2);
    settle();
    // Due times order the queue: the probe runs before the tick only if that is due later.
    scheduler.runOnce(action("probe"), period - milliseconds(1));
    wake(period);
    EXPECT_THAT(record.waitFor(5), ElementsAre("first", "second", "probe", "first", "second"));
    EXPECT_TRUE(log.has(5, "Period = 600000 milliseconds")) << log.text();
}

TEST_F(ActionSchedulerTest, renewsTheTickAfterAnActionThatThrows)
{
    scheduler.addTask(std::make_shared<FuncAction>([] { throw std::runtime_error("broken action"); }));
    scheduler.addTask(action("after"));
    start();
    record.waitFor(1);
    scheduler.runOnce(std::make_shared<FuncAction>([] { throw std::runtime_error("broken once"); }), milliseconds(0));
    scheduler.runOnce(action("once"), milliseconds(0));
    record.waitFor(2);
    wake(period);
    EXPECT_THAT(record.waitFor(3), ElementsAre("after", "once", "after"));
    EXPECT_EQ(log.count("Exception caught: broken action"), 2u) << log.text();
    EXPECT_TRUE(log.has(2, "Exception caught: broken once")) << log.text();
}

TEST_F(ActionSchedulerTest, refusesAndSkipsWhileNotEnabledButRunsWhatIsQueued)
{
    scheduler.addTask(nullptr);
    scheduler.runOnce(nullptr, milliseconds(0));
    EXPECT_EQ(log.count("You can't add empty action."), 2u) << log.text();
    scheduler.addTask(action("periodic"));
    scheduler.runOnce(action("queued"), milliseconds(0));
    scheduler.runOnce(action("behind the tick"), milliseconds(1));
    scheduler.setEnabled(false);
    scheduler.runOnce(action("refused"), milliseconds(0));
    EXPECT_TRUE(log.has(4, "Failed to run once a task because action scheduler isn't enabled.")) << log.text();
    start();
    record.waitFor(1);
    wake(milliseconds(1));
    EXPECT_THAT(record.waitFor(2), ElementsAre("queued", "behind the tick"));
    scheduler.setEnabled(true);
    wake(period);
    EXPECT_THAT(record.waitFor(3), ElementsAre("queued", "behind the tick", "periodic"));
}

TEST_F(ActionSchedulerTest, cancelsOneShotActionsButNotTheTick)
{
    EXPECT_EQ(scheduler.cancelOneTimeTasks(), 0u);
    EXPECT_TRUE(log.has(5, "Canceled 0 task(s)")) << log.text();
    scheduler.addTask(action("periodic"));
    start();
    record.waitFor(1);
    settle();
    const auto dropped = action("dropped");
    scheduler.runOnce(dropped, milliseconds(1000));
    scheduler.runOnce(dropped, milliseconds(2000));
    EXPECT_EQ(scheduler.cancelOneTimeTasks(), 2u);
    EXPECT_EQ(dropped.use_count(), 1);
    wake(period);
    EXPECT_THAT(record.waitFor(2), ElementsAre("periodic", "periodic"));
}

TEST_F(ActionSchedulerTest, startsOnce)
{
    scheduler.addTask(action("periodic"));
    EXPECT_FALSE(scheduler.isStarted());
    start();
    record.waitFor(1);
    EXPECT_TRUE(scheduler.isStarted());
    const milliseconds other{1};
    scheduler.start(other, true);
    scheduler.runOnce(action("probe"), milliseconds(0));
    EXPECT_THAT(record.waitFor(2), ElementsAre("periodic", "probe"));
    stop();
    EXPECT_FALSE(scheduler.isStarted());
    scheduler.start(period, true);
    EXPECT_EQ(record.waitFor(2).size(), 2u);
}

} // namespace
} // namespace vx::tarn
