#include "rig.h"

#include "common/utils/folders.h"
#include "support/machine.h"
#include "vxtl/scopeexit.h"
#include "vxtl/wow64.h"

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
        {automatic.mode, "install_critical", "critical dailyT12:00:00"},
        {automatic.mode, "install_critical_and_important", "important dailyT12:00:00"},
        {automatic.frequency, "every_monday", "important 2T12:00:00"},
        {automatic.frequency, "every_tuesday", "important 4T12:00:00"},
        {automatic.frequency, "every_wednesday", "important 8T12:00:00"},
        {automatic.frequency, "every_thursday", "important 16T12:00:00"},
        {automatic.frequency, "every_friday", "important 32T12:00:00"},
        {automatic.frequency, "every_saturday", "important 64T12:00:00"},
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

TEST_F(ScheduledTaskTest, isMendedByTheChangeAfterAFailure)
{
    startStoreAlone();
    put(automatic.mode, "install_all");
    startHost(Wait::ForProcessing);
    const struct {
        const char *fault, *message;
    } rows[] = {
        {"TaskScheduler::CreateInstance 0x80040154", "Failed to find the Task Scheduler. HRESULT = -2147221164"},
        {"ITaskService::Connect 0x80070422", "Failed to connect to scheduler. HRESULT = -2147023838"},
        {"ITaskFolder::RegisterTaskDefinition 0x80070005", "Failed to register task definition. HRESULT = -2147024891"},
    };
    std::int32_t hour = 12;
    for (const auto& [fault, message] : rows) {
        SCOPED_TRACE(fault);
        const std::string before = scheduled();
        EXPECT_EQ(command(std::string("system-fault ") + fault), 0u);
        put(automatic.hour, ++hour);
        waitForLog(message);
        EXPECT_EQ(scheduled(), before);
        put(automatic.hour, ++hour);
        waitForTask("all dailyT" + std::to_string(hour) + ":00:00");
    }
}

TEST_F(ScheduledTaskTest, comesWithTheChangeAfterStaleFilesWereRemoved)
{
    const auto inRealSystemDirectory = [](auto function) {
        const vx::wow64::DisabledFsRedirection redirection;
        return function();
    };
    const std::filesystem::path others = vx::tarn::common::utils::getSystemFolder() + L"\\Tasks\\Vantorix";
    const std::filesystem::path own = others / "Tarnpatch";
    const vx::ScopeExit end([&] { inRealSystemDirectory([&] { return std::filesystem::remove_all(others); }); });
    inRealSystemDirectory([&] { return std::filesystem::create_directories(own / "task"); });
    Machine::change([](auto& state) { state.folders.push_back({"\\Vantorix", {}}); });
    startStoreAlone();
    put(automatic.mode, "install_all");
    startHost(Wait::ForProcessing);
    EXPECT_EQ(logCount("Failed to delete folder: "), 1u);
    EXPECT_FALSE(inRealSystemDirectory([&] { return exists(own); }));
    EXPECT_TRUE(inRealSystemDirectory([&] { return exists(others); }));
    EXPECT_EQ(scheduled(), "");
    put(automatic.hour, 3);
    waitForTask("all dailyT03:00:00");
}

} // namespace
} // namespace rig
