#include "rig.h"

#include "journal/journal.h"
#include "support/machine.h"
#include "support/updatepolicy.h"

#include <windows.h>

#include <sddl.h>

namespace rig {
namespace {

namespace journal = devhost::journal;

constexpr Place restartPlace = {L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\Unitide", {}};
constexpr auto everything = L"D:(A;;KA;;;WD)", reading = L"D:(A;;KR;;;WD)", nothing = L"D:";

/// What anybody may do with the key; the owner may always say so, also after a test that was killed.
void allow(const Place& place, const wchar_t* rights)
{
    HKEY key = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, wcschr(place.key, L'\\') + 1, 0, WRITE_DAC, &key);
    ConvertStringSecurityDescriptorToSecurityDescriptorW(rights, SDDL_REVISION_1, &descriptor, nullptr);
    RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor);
    LocalFree(descriptor);
    RegCloseKey(key);
}

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
    const json crash = {{"steps", {"pause_updates"}}, {"crash", true}}, resume = {{"steps", {"resume_updates"}}};
    const json around = {{"steps", {"pause_updates", "deploy", "resume_updates"}}, {"deploy", true}};
    const Numbers set = {{0, 4, 3, 12}}, off = {{1, 0, 0, 0}}, zeros = {{0, 0, 0, 0}}, none = {{}};
    const struct {
        const char* label;
        std::vector<json> runs;
        Numbers policy, saved, policyAfter, savedAfter;
        std::size_t commits;
        const wchar_t* rights = everything; ///< to the policy
    } rows[] = {
        {"a crash between two pauses", {crash, pause, restore}, set, none, set, zeros, 2},
        {"resume without a pause", {resume}, set, none, zeros, zeros, 1},
        {"a missing value", {pause}, {{0, 4, 3}}, none, {{0, 4, 3}}, {{0, 4, 3, 0}}, 0},
        {"a text in the policy", {pause}, {{0, noNumber, 3, 12}}, none, {{0, 3, 12}}, zeros, 0},
        {"a text in what is kept", {restore}, off, {{0, noNumber, 3, 12}}, off, {{0, 3, 12}}, 0},
        {"a policy that is not to be changed", {pause}, set, none, set, zeros, 0, reading},
        {"around a deployment", {around}, set, none, set, zeros, 2},
    };
    startHost();
    allow(policyPlace, everything);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        putNumbers(policyPlace, row.policy);
        putNumbers(savedPlace, row.saved);
        machine.change([](auto& state) { state.policySaves.clear(); });
        allow(policyPlace, row.rights);
        for (const json& run : row.runs)
            take(run);
        allow(policyPlace, everything);
        EXPECT_EQ(numbersOf(policyPlace), row.policyAfter);
        EXPECT_EQ(numbersOf(savedPlace), row.savedAfter);
        EXPECT_EQ(machine.state().policySaves.size(), row.commits);
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
    allow(restartPlace, everything);
    const auto key = vx::registry::createWin32Registry()->createKey(restartPlace.key);
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"missing", [] {}},
        {"no text", [&] { key->setInt32Value(L"RestartCommand", 1); }},
        {"gone from the disk", [&] { key->setStringValue(L"RestartCommand", (place / "none.exe").native()); }},
        {"not to be read", [&] { allow(restartPlace, nothing); }},
    };
    const json run = {{"steps", {"prompt", "prompt_sessions"}}};
    startHost();
    for (const auto& [label, prepare] : rows) {
        SCOPED_TRACE(label);
        prepare();
        EXPECT_EQ(take(run), (Texts{"prompt false", "prompt_sessions true"}));
    }
    allow(restartPlace, everything);
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
