#include "commandtest.h"
#include "host/exitcode.h"
#include "host/testmachine.h"
#include "support/machine.h"

namespace {

using namespace support;
using testing::HasSubstr;

/// The commands on a machine of their own, with an agent in a folder with blanks.
class MachineCommandsTest : public CommandTest {
protected:
    static void schedule(const std::wstring& path, const std::string& arguments)
    {
        Machine::change([&](auto& state) {
            state.tasks.clear();
            auto& task = state.tasks.emplace_back();
            task.path = "\\A\\Agent Task";
            task.definition = {{"Actions", {{{"Path", vx::str::toUtf8(path)}, {"Arguments", arguments}}}}};
        });
    }

    const Machine own;
    const std::filesystem::path place = folder.path() / "two words" / "and three more";
};

} // namespace

TEST_F(MachineCommandsTest, startATaskWithItsArgumentsHoweverItsPathIsWritten)
{
    const std::wstring program = place / "tarnag.exe";
    installAgent(place);
    writeFile(place / "tarnag.script.json", R"({"runs": [{}], "queue": [{"idle": true, "exitCode": 7}]})");
    SetEnvironmentVariableW(L"TARNHD_TEST_PLACE", place.c_str());
    for (const auto& path : {program, L'"' + program + L'"', std::wstring(L"%TARNHD_TEST_PLACE%\\TARNAG.exe")}) {
        SCOPED_TRACE(vx::str::toUtf8(path));
        schedule(path, "--command=queue --severity=important");
        const auto outcome = call("tasks run --wait 60", "agent task");
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        EXPECT_THAT(outcome.output, HasSubstr("it has ended with 7\n"));
        EXPECT_THAT(readFile(place / "tarnag.runs.jsonl"), HasSubstr(R"(["--command=queue","--severity=important"])"));
        std::filesystem::remove(place / "tarnag.runs.jsonl");
    }
    schedule(place / "no.exe", "");
    const auto outcome = call("tasks run", "Agent Task");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("cannot start "));
}

TEST(TestMachine, mustBeSaidOnARealWindowsOnly)
{
    using devhost::host::MachineOptions;
    using devhost::host::requireTestMachine;
    using devhost::machine::System;
    EXPECT_THROW(requireTestMachine(MachineOptions{}, System::Windows), devhost::host::CommandError);
    EXPECT_NO_THROW(requireTestMachine(MachineOptions{true}, System::Windows));
    EXPECT_NO_THROW(requireTestMachine(MachineOptions{}, System::Wine));
}
