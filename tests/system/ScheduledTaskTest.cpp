#include "rig.h"

#include "support/machine.h"

namespace rig {
namespace {

const auto& automatic = settings.installation.automatic;

/// What the Task Scheduler is asked for through store, host and plug-in.
class ScheduledTaskTest : public SystemTest {
protected:
    /// Severity, days and hour of the one task; empty without one.
    static std::string scheduled()
    {
        const auto tasks = Machine::state().tasks;
        if (tasks.empty())
            return {};
        EXPECT_EQ(tasks.size(), 1u);
        const json definition = tasks.front().definition;
        const std::string arguments = definition.at("Actions").at(0).at("Arguments");
        const json trigger = definition.at("Triggers").at(0);
        const std::string days = trigger.contains("DaysOfWeek") ? trigger.at("DaysOfWeek").dump() : "daily";
        const std::string start = trigger.at("StartBoundary");
        return arguments.substr(arguments.rfind('=') + 1) + ' ' + days + start.substr(10);
    }
    void waitForTask(const std::string& expected)
    {
        waitFor(machine.file.parent_path(), "the task " + expected, [&] { return scheduled() == expected; });
    }

    const Machine machine;
};

TEST_F(ScheduledTaskTest, followsEachChangeOfTheSettingsInPlace)
{
    startHost(Wait::ForProcessing);
    const struct {
        const vx::tarn::KeyRow& key;
        json value;
        const char* expected;
    } rows[] = {
        {automatic.mode, "install_all", "all dailyT12:00:00"},
        {automatic.mode, "install_critical_and_important", "important dailyT12:00:00"},
        {automatic.frequency, "every_monday", "important 2T12:00:00"},
        {automatic.frequency, "every_sunday", "important 1T12:00:00"},
        {automatic.hour, 3, "important 1T03:00:00"},
        {automatic.hour, 25, "important 1T01:00:00"},
        {automatic.mode, "disable", ""},
        {automatic.mode, "install_all", "all 1T01:00:00"},
        {settings.enabled, false, ""},
        {settings.enabled, true, "all 1T01:00:00"},
        {automatic.frequency, "every_day", "all dailyT01:00:00"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(keyOf(row.key) + " " + row.value.dump());
        put(row.key, row.value);
        ASSERT_NO_FATAL_FAILURE(waitForTask(row.expected));
    }
    EXPECT_EQ(stopHost(), 0u);
    EXPECT_EQ(logCount("Installation\" doesn't exist. It will be created."), 3u);
    EXPECT_EQ(logCount("Scheduler task will be removed."), 3u) << "that of the start too";
}

} // namespace
} // namespace rig
