#include "tarnhd/actionscheduler/actionscheduler.h"

#include "support/fakeclock.h"
#include "support/logcapture.h"
#include "support/record.h"

#include <thread>

namespace vx::tarn {
namespace {

using namespace std::chrono_literals;
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
    ~ActionSchedulerTest() override { scheduler.stop(); }

    void start()
    {
        running = std::jthread([this] { scheduler.start(period, true); });
    }
    std::shared_ptr<ActionBase> action(
        const std::string& name, const std::function<void()>& what = [] {})
    {
        return std::make_shared<FuncAction>([this, name, what] {
            record.add(name);
            what();
        });
    }
    void wake(std::chrono::milliseconds after)
    {
        clock.advance(after);
        scheduler.onResume();
    }

    support::LogCapture log;
    support::FakeClock clock;
    support::Record record;
    std::chrono::milliseconds period = 10min;
    ActionScheduler scheduler{clock.function()};
    std::jthread running;
};

TEST_F(ActionSchedulerTest, countsThePeriodFromTheEndOfARoundWhateverActionsThrowAndCancelsOneShotActionsOnly)
{
    const auto fail = [] { throw std::runtime_error("broken action"); };
    scheduler.addTask(action("broken", fail));
    scheduler.addTask(action("tick", [this] { clock.advance(period); }));
    start();
    record.waitFor(2);
    // Behind the end of the tick, which renews itself there.
    scheduler.runOnce(action("broken once", fail), 0ms);
    scheduler.runOnce(action("settled"), 0ms);
    record.waitFor(4);
    const auto dropped = action("dropped");
    scheduler.runOnce(dropped, 1s);
    scheduler.runOnce(dropped, 2s);
    EXPECT_EQ(scheduler.cancelOneTimeTasks(), 2u);
    EXPECT_EQ(dropped.use_count(), 1);
    // Due times order the queue: the probe runs before the tick only if that is due later.
    scheduler.runOnce(action("probe"), period - 1ms);
    wake(period);
    EXPECT_THAT(record.waitFor(7), ElementsAre("broken", "tick", "broken once", "settled", "probe", "broken", "tick"));
    EXPECT_GE(log.count("Exception caught: broken action"), 2u) << log.text();
}

TEST_F(ActionSchedulerTest, refusesAndSkipsWhileNotEnabledButRunsWhatIsQueued)
{
    scheduler.addTask(nullptr);
    scheduler.runOnce(nullptr, 0ms);
    scheduler.addTask(action("periodic"));
    scheduler.runOnce(action("queued"), 0ms);
    scheduler.runOnce(action("behind the tick"), 1ms);
    scheduler.setEnabled(false);
    scheduler.runOnce(action("refused"), 0ms);
    start();
    record.waitFor(1);
    wake(1ms);
    record.waitFor(2);
    scheduler.setEnabled(true);
    wake(period);
    scheduler.start(period, true); // which it is already
    EXPECT_THAT(record.waitFor(3), ElementsAre("queued", "behind the tick", "periodic"));
    scheduler.stop();
    running.join();
    EXPECT_FALSE(scheduler.isStarted());
    scheduler.start(period, true); // for good
}

} // namespace
} // namespace vx::tarn
