#include "tarnhd/autoinstallation/autoinstallation.h"

#include "common/utils/localtime.h"
#include "support/fakeclock.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "support/machine.h"
#include "support/record.h"
#include "tarnhd/scheduler/scheduler.h"
#include "vxtl/registry.h"

#include <future>

namespace vx::tarn {
namespace {

using nlohmann::json;
using support::Machine;

const TarnpatchSettings keys{nullptr};
const std::wstring enabledKey = TarnpatchStatus(nullptr).enabled.key();
const std::wstring modeKey = keys.installation.automatic.mode.key();

/// On the stand-in for the Task Scheduler.
class AutoInstallationTest : public testing::Test {
protected:
    AutoInstallationTest()
    {
        key->setStringValue(L"InstallationDirectory", L"C:\\L\u00e9o\\");
        store->setBoolValue(enabledKey, true);
        store->setStringValue(modeKey, L"install_all");
        clock.now = *common::utils::fromLocalTime({2026, 1, 31, 11, 30, 0, 0}) * ticksPerSecond;
    }
    ~AutoInstallationTest() override { registry->deleteTree(installationKey); }

    std::shared_ptr<scheduler::Scheduler> makeScheduler()
    {
        std::exchange(whileMaking, [] {})();
        return scheduler::createScheduler();
    }
    static std::size_t tasks() { return Machine::state().tasks.size(); }

    static constexpr auto installationKey = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn";
    const Machine machine;
    const support::LogCapture log;
    support::FakeClock clock;
    std::function<void()> whileMaking = [] {}; ///< a scheduler, once
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    std::shared_ptr<registry::Registry> registry = registry::createWin32Registry();
    std::shared_ptr<registry::RegistryKey> key = registry->createKey(installationKey);
    std::shared_ptr<settings::Settings> settings = support::FakeSettings::handle(store);
    AutoInstallation installation{L"task", [this] { return makeScheduler(); }, TarnpatchSettings(settings),
        TarnpatchStatus(settings), registry, clock.function()};
};

TEST_F(AutoInstallationTest, makesTheTaskAndOverwritesItInPlace)
{
    json action{{"Type", 0}, {"Path", "C:\\L\xC3\xA9o\\tarnag.exe"}, {"Arguments", "--command=queue --severity=all"}};
    EXPECT_TRUE(installation.update());
    EXPECT_EQ(Machine::state().tasks.at(0).path, "\\Vantorix\\Tarnpatch\\task");
    EXPECT_EQ(Machine::definition()["Actions"], json::array({action}));
    EXPECT_EQ(Machine::definition()["Settings"]["StartWhenAvailable"], true);
    EXPECT_EQ(Machine::definition()["Triggers"],
        json::parse(R"([{"DaysInterval": 1, "Enabled": true, "Id": "trigger0", "StartBoundary": "2026-01-31T12:00:00",
            "Type": 2}])"))
        << "without an end";
    EXPECT_EQ(Machine::definition()["Principal"]["GroupId"], "NT AUTHORITY\\SYSTEM");
    EXPECT_TRUE(log.has(4, "Scheduler task \"task\" doesn't exist. It will be created.")) << log.text();
    store->setStringValue(modeKey, L"install_critical_and_important");
    action["Arguments"] = "--command=queue --severity=important";
    EXPECT_TRUE(installation.update());
    EXPECT_EQ(tasks(), 1u);
    EXPECT_EQ(Machine::definition()["Actions"], json::array({action}));
    EXPECT_TRUE(log.has(4, "Scheduler task \"task\" already exists.")) << log.text();
    EXPECT_EQ(log.count("Scheduler task \"task\" has been obtained."), 2u) << log.text();
    Machine::plan("ITaskFolder::GetTask", {E_ACCESSDENIED});
    EXPECT_TRUE(installation.update()) << "one that can't be looked at";
    EXPECT_EQ(tasks(), 1u);
    EXPECT_EQ(log.count("The task has been created successfully."), 3u) << log.text();
}

TEST_F(AutoInstallationTest, saysWhatFailedAndBeginsAnewAtTheNextUpdate)
{
    const struct {
        const wchar_t* mode;
        const char *failing, *message;
    } rows[] = {
        {L"install_all", "TaskScheduler::CreateInstance", "Failed to find the Task Scheduler. HRESULT = -2147467259"},
        {L"install_all", "ITaskService::Connect", "Failed to create a scheduler."},
        {L"install_all", "ITaskService::NewTask", "Exception caught: Type: vx::ComException"},
        {L"install_all", "IActionCollection::Create", "Failed to set task command: C:\\L\xC3\xA9o\\tarnag.exe"},
        {L"install_all", "IExecAction::put_Arguments", "Failed to set the task parameters."},
        {L"install_all", "ITriggerCollection::Create", "Failed to set the task triggers."},
        {L"install_all", "ITaskSettings::put_StartWhenAvailable", "Failed to set \"Start when available\" flag"},
        {L"install_all", "ITaskFolder::RegisterTaskDefinition", "Failed to save the task."},
        {L"disable", "ITaskFolder::DeleteTask", "Failed to remove task with name \"task\"."},
        {L"disable", "ITaskService::Connect", "Failed to create a scheduler."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.failing);
        const auto before = log.count(row.message);
        const auto present = tasks();
        store->setStringValue(modeKey, row.mode);
        Machine::plan(row.failing, {E_FAIL});
        EXPECT_FALSE(installation.update());
        EXPECT_EQ(log.count(row.message), before + 1) << log.text();
        EXPECT_EQ(tasks(), present);
        EXPECT_TRUE(installation.update());
    }
    EXPECT_TRUE(installation.update());
    EXPECT_EQ(log.count("Can't remove task with task name \"task\". The task isn't exists."), 2u) << log.text();
    EXPECT_EQ(log.count("Scheduler not initialized."), 2u) << log.text();
    EXPECT_EQ(log.count("Failed to set triggers."), 1u) << log.text();
}

TEST_F(AutoInstallationTest, leavesWhatTheLastChangeSaysWhenUpdatesMeet)
{
    std::future<bool> second;
    whileMaking = [&] {
        store->setStringValue(modeKey, L"disable");
        second = std::async(std::launch::async, [this] { return installation.update(); });
        EXPECT_EQ(second.wait_for(support::moment), std::future_status::timeout);
    };
    EXPECT_TRUE(installation.update());
    ASSERT_EQ(second.wait_for(support::deadline), std::future_status::ready);
    EXPECT_TRUE(second.get());
    EXPECT_EQ(tasks(), 0u);
}

TEST_F(AutoInstallationTest, letsNoExceptionOut)
{
    store->setStringValue(modeKey, L"Disable");
    EXPECT_FALSE(installation.update());
    EXPECT_TRUE(log.has(2, "Exception caught: Invalid value for ModeItem")) << log.text();
    store->setStringValue(modeKey, L"install_all");
    key->deleteValue(L"InstallationDirectory");
    EXPECT_FALSE(installation.update());
    EXPECT_TRUE(log.has(2, "Exception caught: Type: Win32Exception")) << log.text();
    EXPECT_EQ(tasks(), 0u);
}

} // namespace
} // namespace vx::tarn
