#include "tarnhd/scheduler/trigger.h"

#include "common/utils/localtime.h"
#include "fakeobjects.h"
#include "support/logcapture.h"
#include "vxtl-com/weeklytrigger.h"

#include <gtest/gtest.h>

namespace vx::scheduler {
namespace {

using Calls = std::vector<std::string>;

const Ticks start = *tarn::common::utils::fromLocalTime({2024, 2, 3, 4, 5, 6, 0}) * ticksPerSecond + 9'999'999;
const Ticks end = *tarn::common::utils::fromLocalTime({2039, 12, 31, 23, 59, 59, 0}) * ticksPerSecond;

class TriggerTest : public testing::Test {
protected:
    bool create(const Trigger& trigger) { return static_cast<bool>(trigger.create(*collection, L"id")); }

    support::LogCapture log;
    fake::Script script;
    com::ComPtr<ITriggerCollection> collection = fake::object<ITriggerCollection>();
    DailyTrigger daily{start, end};
    WeeklyTrigger weekly{start, end};
};

TEST_F(TriggerTest, writesWhatItHolds)
{
    const Calls common{"ITrigger::put_Id id", "ITrigger::put_StartBoundary 2024-02-03T04:05:06",
        "ITrigger::put_EndBoundary 2039-12-31T23:59:59"};
    daily.setDaysInterval(3);
    weekly.setWeeksInterval(4);
    weekly.setDaysOfWeek({2, 8});
    const struct {
        const Trigger& trigger;
        Calls first, last;
    } rows[] = {{daily, {"ITriggerCollection::Create 2"}, {"IDailyTrigger::put_DaysInterval 3"}},
        {weekly, {"ITriggerCollection::Create 3"},
            {"IWeeklyTrigger::put_WeeksInterval 4", "IWeeklyTrigger::put_DaysOfWeek 10"}}};
    for (const auto& row : rows) {
        Calls expected = row.first;
        expected.insert(expected.end(), common.begin(), common.end());
        expected.insert(expected.end(), row.last.begin(), row.last.end());
        script.calls.clear();
        EXPECT_TRUE(create(row.trigger));
        EXPECT_EQ(script.calls, expected);
    }
}

TEST_F(TriggerTest, leavesOutEndsAndIntervalsThatAreNone)
{
    daily.setEndless(true);
    weekly.setEndBoundary(noEnd);
    EXPECT_TRUE(weekly.isEndless());
    EXPECT_TRUE(create(daily));
    EXPECT_TRUE(create(weekly));
    EXPECT_EQ(script.calls,
        (Calls{"ITriggerCollection::Create 2", "ITrigger::put_Id id", "ITrigger::put_StartBoundary 2024-02-03T04:05:06",
            "ITriggerCollection::Create 3", "ITrigger::put_Id id", "ITrigger::put_StartBoundary 2024-02-03T04:05:06",
            "IWeeklyTrigger::put_DaysOfWeek 0"}));
}

TEST_F(TriggerTest, saysWhichCallFailed)
{
    daily.setDaysInterval(1);
    weekly.setWeeksInterval(1);
    const struct {
        const Trigger& trigger;
        const char *call, *message;
    } rows[] = {
        {daily, "ITriggerCollection::Create", "Failed to create trigger. HRESULT = "},
        {daily, "ITrigger::QueryInterface", "Failed to query trigger interface. HRESULT = "},
        {daily, "ITrigger::put_Id", "Failed to put trigger ID. HRESULT = "},
        {daily, "ITrigger::put_StartBoundary", "Failed to put start boundary. HRESULT = "},
        {daily, "ITrigger::put_EndBoundary", "Failed to put end boundary. HRESULT = "},
        {daily, "IDailyTrigger::put_DaysInterval", "Failed to put days interval. HRESULT = "},
        {weekly, "IWeeklyTrigger::put_WeeksInterval", "Failed to put days interval. HRESULT = "},
        {weekly, "IWeeklyTrigger::put_DaysOfWeek", "Failed to put days of week. HRESULT = "},
    };
    long code = E_FAIL;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.call);
        script.counts.clear();
        script.results = {{row.call, {++code}}};
        EXPECT_FALSE(create(row.trigger));
        EXPECT_TRUE(log.has(2, row.message + std::to_string(code))) << log.text();
    }
}

} // namespace
} // namespace vx::scheduler
