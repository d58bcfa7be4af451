#include "tarnhd/autoinstallation/autoinstallation.h"

#include "support/fakeclock.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "support/record.h"
#include "tarnhd/autoinstallation/schedule.h"
#include "tarnhd/scheduler/scheduler.h"
#include "tarnhd/scheduler/task.h"
#include "tarnhd/scheduler/trigger.h"
#include "vxtl-com/weeklytrigger.h"
#include "vxtl/registry.h"

#include <gtest/gtest.h>

#include <future>

namespace vx::tarn {
namespace {

using Calls = std::vector<std::string>;

const TarnpatchSettings keys{nullptr};
const std::wstring enabledKey = TarnpatchStatus(nullptr).enabled.key();
const std::wstring modeKey = keys.installation.automatic.mode.key();
const std::wstring frequencyKey = keys.installation.automatic.frequency.key();
const std::wstring hourKey = keys.installation.automatic.hour.key();

/// The Task Scheduler, as far as the test tells: its calls, the one of them that fails, the names of its tasks.
struct System {
    Calls calls;
    std::string failing;
    std::vector<std::wstring> names;
    std::vector<std::shared_ptr<scheduler::Trigger>> triggers;
    std::function<void()> whileInitializing = [] {}; ///< once

    bool call(const std::string& name, const std::wstring& argument = {})
    {
        calls.push_back(name + (argument.empty() ? "" : " " + std::string(argument.begin(), argument.end())));
        return name != failing;
    }
};

struct FakeTask : scheduler::Task {
    FakeTask(System& s, const std::wstring& name) : Task(name, {}, {}, {}), system(s) {}
    bool setActionPath(const std::wstring& path) override { return system.call("path", path); }
    bool setActionArguments(const std::wstring& text) override { return system.call("arguments", text); }
    bool setStartWhenAvailable(bool value) override { return system.call(value ? "available" : "not available"); }
    bool setTriggers(const std::vector<std::shared_ptr<scheduler::Trigger>>& triggers) override
    {
        system.triggers = triggers;
        return system.call("triggers");
    }
    bool save(const std::wstring& user, const std::wstring& password) override
    {
        system.names.assign(1, getName());
        return system.call("save", user + password);
    }
    System& system;
};

struct FakeScheduler : scheduler::Scheduler {
    explicit FakeScheduler(System& s) : Scheduler({}), system(s) {}
    bool Initialize() override
    {
        std::exchange(system.whileInitializing, [] {})();
        return system.call("initialize");
    }
    std::vector<std::wstring> getTaskNames() override { return system.names; }
    bool deleteTask(const std::wstring& name) override
    {
        std::erase(system.names, name);
        return system.call("delete");
    }
    std::shared_ptr<scheduler::Task> getTask(const std::wstring& name) override { return obtain("get", name); }
    std::shared_ptr<scheduler::Task> createTask(const std::wstring& name) override { return obtain("create", name); }
    bool hasTask(const std::wstring&) override { return !system.names.empty(); }

    std::shared_ptr<scheduler::Task> obtain(const std::string& call, const std::wstring& name)
    {
        return system.call(call) ? std::make_shared<FakeTask>(system, name) : nullptr;
    }
    System& system;
};

class AutoInstallationTest : public testing::Test {
protected:
    AutoInstallationTest()
    {
        key->setStringValue(L"InstallationDirectory", L"C:\\Tarn\\");
        store->setBoolValue(enabledKey, true);
        store->setStringValue(modeKey, L"install_all");
    }
    ~AutoInstallationTest() override { registry->deleteTree(installationKey); }

    bool update()
    {
        system.calls.clear();
        return installation.update();
    }

    static constexpr auto installationKey = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn";
    support::LogCapture log;
    support::FakeClock clock;
    System system;
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    std::shared_ptr<registry::Registry> registry = registry::createWin32Registry();
    std::shared_ptr<registry::RegistryKey> key = registry->createKey(installationKey);
    std::shared_ptr<settings::Settings> settings = support::FakeSettings::handle(store);
    AutoInstallation installation{L"task", [this] { return std::make_shared<FakeScheduler>(system); },
        TarnpatchSettings(settings), TarnpatchStatus(settings), registry, clock.function()};
};

TEST_F(AutoInstallationTest, makesTheTaskAndOverwritesItInPlace)
{
    Calls expected{"initialize", "create", "path C:\\Tarn\\tarnag.exe", "arguments --command=queue --severity=all",
        "triggers", "available", "save"};
    EXPECT_TRUE(update());
    EXPECT_EQ(system.calls, expected);
    EXPECT_TRUE(log.has(4, "Scheduler task \"task\" doesn't exist. It will be created.")) << log.text();
    store->setStringValue(modeKey, L"install_critical_and_important");
    expected[1] = "get";
    expected[3] = "arguments --command=queue --severity=important";
    EXPECT_TRUE(update());
    EXPECT_EQ(system.calls, expected);
    EXPECT_TRUE(log.has(4, "Scheduler task \"task\" already exists.")) << log.text();
    EXPECT_EQ(log.count("Scheduler task \"task\" has been obtained."), 2u) << log.text();
    EXPECT_EQ(log.count("The task has been created successfully."), 2u) << log.text();
}

TEST_F(AutoInstallationTest, triggersAtTheHourWithoutAnEnd)
{
    store->setInt32Value(hourKey, 7);
    for (const wchar_t* frequency : {L"every_day", L"every_monday", L"every_sunday"}) {
        store->setStringValue(frequencyKey, frequency);
        ASSERT_TRUE(update());
        ASSERT_EQ(system.triggers.size(), 1u);
        const scheduler::Trigger& trigger = *system.triggers.front();
        EXPECT_TRUE(trigger.isEndless());
        EXPECT_EQ(trigger.getStartBoundary(), startBoundaryOf(clock.now, 7));
        EXPECT_EQ(trigger.getEndBoundary(), clock.now);
        if (const auto* daily = dynamic_cast<const scheduler::DailyTrigger*>(&trigger)) {
            EXPECT_EQ(frequency, std::wstring(L"every_day"));
            EXPECT_EQ(daily->getDaysInterval(), 1);
            continue;
        }
        const auto& weekly = dynamic_cast<const scheduler::WeeklyTrigger&>(trigger);
        EXPECT_EQ(weekly.getWeeksInterval(), 1);
        EXPECT_EQ(
            weekly.getDaysOfWeek(), std::vector<std::int32_t>{frequency == std::wstring(L"every_sunday") ? 1 : 2});
    }
    EXPECT_EQ(log.count("Set every day trigger"), 1u) << log.text();
    EXPECT_EQ(log.count("Set weekly trigger"), 2u) << log.text();
}

TEST_F(AutoInstallationTest, hasNoTriggerForAFrequencyThatIsNone)
{
    EXPECT_EQ(makeTrigger(static_cast<FrequencyItem>(8), clock.now), nullptr);
    EXPECT_TRUE(log.has(2, "Failed to get day of week. Frequency is 8")) << log.text();
}

TEST_F(AutoInstallationTest, removesTheTaskWhenSwitchedOff)
{
    const struct {
        bool enabled;
        const wchar_t* mode;
        bool present;
    } rows[] = {{false, L"install_critical", true}, {true, L"disable", true}, {true, L"disable", false}};
    for (const auto& row : rows) {
        store->setBoolValue(enabledKey, row.enabled);
        store->setStringValue(modeKey, row.mode);
        system.names = {L"tasks", row.present ? L"task" : L"Task"};
        EXPECT_TRUE(update());
        EXPECT_EQ(system.calls, row.present ? (Calls{"initialize", "delete"}) : (Calls{"initialize"}));
    }
    EXPECT_EQ(log.count("Can't remove task with task name \"task\". The task isn't exists."), 1u) << log.text();
}

TEST_F(AutoInstallationTest, saysWhatFailedAndBeginsAnewAtTheNextUpdate)
{
    const struct {
        const wchar_t* mode;
        const char *failing, *message;
    } rows[] = {
        {L"install_all", "initialize", "Failed to create a scheduler."},
        {L"install_all", "create", "Failed to obtain a scheduler task \"task\"."},
        {L"install_all", "path", "Failed to set task command: C:\\Tarn\\tarnag.exe"},
        {L"install_all", "arguments", "Failed to set the task parameters."},
        {L"install_all", "triggers", "Failed to set the task triggers."},
        {L"install_all", "available", "Failed to set \"Start when available\" flag"},
        {L"install_all", "save", "Failed to save the task."},
        {L"disable", "initialize", "Failed to create a scheduler."},
        {L"disable", "delete", "Failed to remove task with name \"task\"."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.failing);
        const auto before = log.count(row.message);
        store->setStringValue(modeKey, row.mode);
        system.names = {};
        if (row.mode == std::wstring(L"disable"))
            system.names = {L"task"};
        system.failing = row.failing;
        EXPECT_FALSE(update());
        EXPECT_EQ(system.calls.back().substr(0, system.calls.back().find(' ')), row.failing);
        EXPECT_EQ(log.count(row.message), before + 1) << log.text();
        system.failing.clear();
        EXPECT_TRUE(update());
    }
    EXPECT_EQ(log.count("Scheduler not initialized."), 2u) << log.text();
    EXPECT_EQ(log.count("Failed to set triggers."), 1u) << log.text();
}

TEST_F(AutoInstallationTest, leavesWhatTheLastChangeSaysWhenUpdatesMeet)
{
    std::future<bool> second;
    system.whileInitializing = [&] {
        store->setStringValue(modeKey, L"disable");
        second = std::async(std::launch::async, [this] { return installation.update(); });
        EXPECT_EQ(second.wait_for(support::moment), std::future_status::timeout);
    };
    EXPECT_TRUE(installation.update());
    ASSERT_EQ(second.wait_for(support::deadline), std::future_status::ready);
    EXPECT_TRUE(second.get());
    EXPECT_EQ(system.names.size(), 0u);
}

TEST_F(AutoInstallationTest, letsNoExceptionOut)
{
    store->setStringValue(modeKey, L"Disable");
    EXPECT_FALSE(update());
    EXPECT_TRUE(log.has(2, "Exception caught: Invalid value for ModeItem")) << log.text();
    EXPECT_EQ(system.calls, Calls());
    store->setStringValue(modeKey, L"install_all");
    key->deleteValue(L"InstallationDirectory");
    EXPECT_FALSE(update());
    EXPECT_TRUE(log.has(2, "Exception caught: Type: Win32Exception")) << log.text();
    EXPECT_EQ(system.names.size(), 0u);
}

} // namespace
} // namespace vx::tarn
