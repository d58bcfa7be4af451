#include "commandtest.h"
#include "host/agentprocess.h"
#include "host/exitcode.h"
#include "host/testmachine.h"
#include "machine/plannedfailure.h"
#include "support/machine.h"

namespace {

namespace machine = devhost::machine;
using namespace support;
using testing::ElementsAre;
using testing::HasSubstr;

std::vector<json> parseLines(const std::string& text)
{
    std::vector<json> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(json::parse(line));
    return lines;
}

/// The commands on a machine of their own.
class MachineCommandsTest : public CommandTest {
protected:
    static void add(const std::string& path, const json& definition)
    {
        Machine::change([&](auto& state) {
            auto& task = state.tasks.emplace_back();
            task.path = path;
            task.definition = definition;
        });
    }

    const Machine own;
};

/// A scheduled stand-in agent in a folder with blanks.
class AgentTaskTest : public MachineCommandsTest {
protected:
    AgentTaskTest() { installAgent(place); }

    void schedule(const std::wstring& path, const std::string& arguments)
    {
        Machine::change([](auto& state) { state.tasks.clear(); });
        add("\\A\\Agent Task", {{"Actions", {{{"Path", vx::str::toUtf8(path)}, {"Arguments", arguments}}}}});
    }
    void script(const json& lists) { writeFile(place / "tarnag.script.json", lists.dump()); }
    std::vector<json> lines() const { return parseLines(readFile(place / "tarnag.runs.jsonl")); }

    const std::filesystem::path place = folder.path() / "two words" / "and three more";
    const std::wstring program = (place / "tarnag.exe").wstring();
};

} // namespace

TEST_F(MachineCommandsTest, refuseWhatTheyCannotDo)
{
    add("\\A\\T", {{"Settings", {{"Enabled", false}}}});
    add("\\A\\Twice", json::object());
    add("\\B\\twice", json::object());
    expectOneLineEach({
        {"tasks run X", 1, "no task is called \"X\""},
        {"tasks run twice", 1, "give the whole path"},
        {"tasks run \\a\\twice", 1, "\\A\\Twice has no action"},
        {"tasks run t", 1, "the task is disabled"},
        {"windows-update 2026-02-29T00:00:00", 2, "is neither none nor a time"},
        {"system-fault ITaskFolder::GetTask 0x800700051", 2, "give the RESULT"},
        {"system-fault ITaskFolders::GetTask 0x80070005", 2, "is no call of the stand-ins"},
    });
    EXPECT_TRUE(Machine::state().plannedFailures.empty());
}

TEST_F(MachineCommandsTest, showTheTasks)
{
    EXPECT_EQ(call("tasks").output, "no task is scheduled\n");
    const json daily{{"Type", 2}, {"StartBoundary", "2999-01-05T12:00:00"}, {"DaysInterval", 1}};
    add("\\A\\L\xC3\xA9o",
        {{"Triggers", {daily}}, {"Actions", {{{"Path", "C:\\a b\\x.exe"}, {"Arguments", "--y=1 2"}}}}});
    add("\\T", {{"Settings", {{"Enabled", false}}}, {"Triggers", {daily}}});
    EXPECT_EQ(call("tasks").output, "NAME  STATE     NEXT START           ACTION        ARGUMENTS\n"
                                    "L\xC3\xA9o   ready     2999-01-05 12:00:00  C:\\a b\\x.exe  --y=1 2\n"
                                    "T     disabled\n");
}

TEST_F(MachineCommandsTest, sayWhenUpdatesWereInstalled)
{
    const auto stored = [] { return Machine::state().lastInstallation; };
    EXPECT_EQ(call("windows-update 2026-01-31T12:00:00").output, "updates were installed at 2026-01-31T12:00:00 UTC\n");
    EXPECT_EQ(stored(), "2026-01-31T12:00:00");
    EXPECT_EQ(call("windows-update none").output, "updates were never installed\n");
    EXPECT_EQ(stored(), "");
    SYSTEMTIME now{};
    GetSystemTime(&now);
    EXPECT_EQ(call("windows-update").code, 0);
    // In UTC, which the tests' local time is far from; the hour may just have changed.
    const auto hour = std::stoi(stored().substr(11, 2));
    EXPECT_THAT(hour, testing::AnyOf(now.wHour, (now.wHour + 1) % 24));
}

TEST_F(MachineCommandsTest, planFailuresInTheirOrder)
{
    call("system-fault ITaskFolder::GetTask 0x80070005 --count 2");
    call("system-fault GroupPolicyObject::CreateInstance -1");
    EXPECT_THAT(Machine::state().plannedFailures,
        ElementsAre(machine::PlannedFailure{"ITaskFolder::GetTask", static_cast<std::int32_t>(0x80070005), 2},
            machine::PlannedFailure{"GroupPolicyObject::CreateInstance", -1, 1}));
    for (int times = 0; times < 2; ++times)
        EXPECT_EQ(machine::takePlannedFailure("ITaskFolder::GetTask"), static_cast<std::int32_t>(0x80070005));
    EXPECT_EQ(machine::takePlannedFailure("ITaskFolder::GetTask"), std::nullopt);
    call("system-fault clear");
    EXPECT_TRUE(Machine::state().plannedFailures.empty());
}

TEST_F(MachineCommandsTest, showWhatWasCommittedToThePolicy)
{
    EXPECT_EQ(call("policy-saves").output, "the policy was never saved\n");
    Machine::change([](auto& state) { state.policySaves = {{true, true, "{E}", "{S}"}}; });
    EXPECT_EQ(call("policy-saves").output, "machine, added {E} by {S}\n");
}

TEST_F(AgentTaskTest, startsWithItsArgumentsHoweverItsPathIsWritten)
{
    script({{"runs", json::array({json::object()})}, {"queue", json::array({{{"idle", true}, {"exitCode", 7}}})}});
    SetEnvironmentVariableW(L"TARNHD_TEST_PLACE", place.c_str());
    for (const auto& path : {program, L'"' + program + L'"', std::wstring(L"%TARNHD_TEST_PLACE%\\TARNAG.exe")}) {
        SCOPED_TRACE(vx::str::toUtf8(path));
        schedule(path, "--command=queue --severity=important");
        const auto outcome = call("tasks run --wait 60", "agent task");
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        EXPECT_THAT(outcome.output, HasSubstr("it has ended with 7\n"));
        ASSERT_FALSE(lines().empty());
        EXPECT_EQ(lines().at(lines().size() - 2).at("arguments"), (json{"--command=queue", "--severity=important"}));
    }
    schedule(place / "no.exe", "");
    const auto outcome = call("tasks run", "Agent Task");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("cannot start "));
}

TEST_F(AgentTaskTest, isNotStartedTwiceAtATime)
{
    const std::string event = "Local\\" + vx::str::toUtf8(instance);
    const devhost::ipc::Signal finish(vx::str::fromUtf8(event));
    script({{"runs", json::array({{{"waitForEvent", event}}, json::object()})}});
    schedule(program, "");
    const auto first = json::parse(call("--json tasks run", "Agent Task").output);
    const vx::KernelHandle process(
        OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, first.at("pid").get<DWORD>()));
    const auto second = call("tasks run", "Agent Task");
    EXPECT_THAT(second.errors, HasSubstr("the task is running"));
    EXPECT_EQ(json::parse(call("--json tasks").output).at("state"), "running");
    finish.set();
    EXPECT_EQ(devhost::host::waitForExit(process.get(), std::chrono::seconds(60)), 0u);
    EXPECT_EQ(json::parse(call("--json tasks").output).at("state"), "ready");
    EXPECT_EQ(lines().size(), 2u) << "one run";
}

TEST(TestMachine, mustBeSaidOnARealWindowsOnly)
{
    using devhost::host::MachineOptions;
    using devhost::host::requireTestMachine;
    EXPECT_THROW(requireTestMachine(MachineOptions{}, machine::System::Windows), devhost::host::CommandError);
    EXPECT_NO_THROW(requireTestMachine(MachineOptions{true}, machine::System::Windows));
    EXPECT_NO_THROW(requireTestMachine(MachineOptions{}, machine::System::Wine));
}
