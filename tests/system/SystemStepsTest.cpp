#include "rig.h"

#include "journal/journal.h"
#include "support/machine.h"
#include "support/updatepolicy.h"

namespace rig {
namespace {

namespace journal = devhost::journal;

/// The agent takes steps at scans.
struct SystemStepsTest : SystemTest {
    /// Lets a run end, well or not, and gives its steps with their results.
    Texts take(json run)
    {
        script({run});
        scan(++scans);
        Texts results;
        for (const json& entry : journal::Journal(agentFolder / journal::agentJournal).read())
            if (entry.at("event") == "start")
                results.clear();
            else if (entry.at("event") == "step")
                results.push_back(entry.at("step").get<std::string>() + ' ' + entry.at("result").dump());
        return results;
    }
    std::int64_t scans = 0;
};

TEST_F(SystemStepsTest, leaveTheUpdatePolicyAsTold)
{
    const Machine machine;
    const json pause = {{"steps", {"pause_updates"}}}, restore = {{"steps", {"restore_updates"}}};
    const json crash = {{"steps", {"pause_updates"}}, {"crash", true}};
    const json around = {{"steps", {"pause_updates", "deploy", "resume_updates"}}, {"deploy", true}};
    const Numbers set = {{0, 4, 3, 12}}, none = {{}};
    startHost();
    for (const auto& runs : {std::vector{crash, pause, restore}, {around}}) {
        SCOPED_TRACE(runs.size());
        putNumbers(policyPlace, set);
        putNumbers(savedPlace, none);
        machine.change([](auto& state) { state.policySaves.clear(); });
        for (const json& run : runs)
            take(run);
        EXPECT_EQ(numbersOf(policyPlace), set);
        EXPECT_EQ(numbersOf(savedPlace), (Numbers{{0, 0, 0, 0}}));
        EXPECT_EQ(machine.state().policySaves.size(), 2u);
    }
    EXPECT_EQ(take(around), (Texts{"pause_updates 0", "deploy null", "resume_updates 0"}));
    putNumbers(policyPlace, {});
    putNumbers(savedPlace, none);
}

TEST_F(SystemStepsTest, askForARebootWithTheRestartProgramThereIs)
{
    const auto place = folder.path() / "two words";
    const std::string program = (place / "restartprompt.exe").string();
    std::filesystem::create_directories(place);
    std::filesystem::copy_file(programFolder() / "restartprompt.exe", program);
    const auto key = vx::registry::createWin32Registry()->createKey(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\Unitide");
    const json run = {{"steps", {"prompt", "prompt_sessions"}}};
    startHost();
    key->setStringValue(L"RestartCommand", (place / "none.exe").native());
    EXPECT_EQ(take(run), (Texts{"prompt false", "prompt_sessions true"})) << "gone from the disk";
    EXPECT_EQ(command("prompts install \"" + program + '"'), 0u);
    EXPECT_EQ(take(run), (Texts{"prompt true", "prompt_sessions true"}));
    const journal::Journal prompts(place / journal::restartJournal);
    waitFor(place, "both prompts", [&] { return prompts.read().size() == 2; });
    const auto shown = tarnhost("prompts");
    EXPECT_EQ(shown.wait(), 0u);
    for (const std::string& path : {program, '"' + program + '"'})
        EXPECT_THAT(shown.output(), testing::HasSubstr("  " + path + " --type tarn --postpone_for 30 --force_at "));
    EXPECT_EQ(prompts.read().front().at("arguments").size(), 6u) << "without the words of the path";
    EXPECT_EQ(command("prompts remove"), 0u);
    EXPECT_EQ(command("prompts"), 1u);
}

} // namespace
} // namespace rig
