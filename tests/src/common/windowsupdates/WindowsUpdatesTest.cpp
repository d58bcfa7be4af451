#include "common/windowsupdates/windowsupdates.h"
#include "common/windowsupdates/igrouppolicy.h"
#include "support/logcapture.h"
#include "support/updatepolicy.h"
#include "win32registry.h"

using namespace vx;
using namespace vx::tarn::common;
using namespace support;

namespace {

/// The system's, which keeps a key from being opened a second time, as to write.
struct GuardedRegistry : registry::details::Win32Registry {
    std::shared_ptr<registry::details::RegistryKeyImpl> openKey(
        const std::wstring& name, unsigned long access, registry::View view) const override
    {
        if (!opened.emplace(name, access).second && name == denied)
            throw std::runtime_error("denied");
        return Win32Registry::openKey(name, access, view);
    }
    mutable std::map<std::wstring, unsigned long> opened; ///< with the access of the first time
    std::wstring denied;
};

struct Computer : IGroupPolicy {
    Computer(const Numbers& policy, const Numbers& saved)
    {
        putNumbers(policyPlace, policy);
        putNumbers(savedPlace, saved);
    }
    ~Computer() override
    {
        putNumbers(policyPlace, {});
        putNumbers(savedPlace, {});
    }
    std::int32_t save(
        PolicySection section, PolicyChange change, const utils::Guid& extension, const utils::Guid& snapIn) override
    {
        EXPECT_TRUE(section == PolicySection::Machine && change == PolicyChange::Add);
        EXPECT_TRUE(extension == registryExtension && snapIn == policySnapIn);
        policySaves.push_back(numbersOf(policyPlace));
        return -1;
    }
    void run(const std::string& operations)
    {
        WindowsUpdates updates(
            {std::shared_ptr<void>(), this}, std::make_shared<registry::Registry>(registry), nullptr);
        const std::map<char, ExitStatus (WindowsUpdates::*)()> calls{
            {'p', &WindowsUpdates::pause}, {'r', &WindowsUpdates::resume}, {'s', &WindowsUpdates::restore}};
        for (const char operation : operations)
            EXPECT_EQ((updates.*calls.at(operation))(), exitstatus::success);
    }

    std::shared_ptr<GuardedRegistry> registry = std::make_shared<GuardedRegistry>();
    std::vector<Numbers> policySaves;
    support::LogCapture log{4};
};

} // namespace

TEST(WindowsUpdates, goBackToWhatTheAdministratorHadSet)
{
    const Numbers set = {{0, 4, 3, 12}}, off = {{1, 0, 0, 0}}, zeros = {{0, 0, 0, 0}}, none = {{}};
    const struct {
        const char* label;
        Numbers policy, saved;
        const char* operations; ///< p, r, s: pause, resume, restore
        Numbers policyAfter, savedAfter;
        std::size_t saves;
        const wchar_t* denied = L"";
    } rows[] = {
        {"pause twice", set, none, "pp", off, set, 1},
        {"pause of what is off", {{1, 4, 3, 12}}, none, "p", {{1, 4, 3, 12}}, {{1, 4, 3, 12}}, 0},
        {"pause over an incomplete state", set, {{9, 9, 9}}, "p", off, set, 1},
        {"pause and resume", set, none, "pr", set, zeros, 2},
        {"pause after a crashed one, and resume", off, set, "pr", set, zeros, 1},
        {"second round goes back to zeros", set, none, "prpr", zeros, zeros, 4},
        {"resume without a pause", set, none, "r", zeros, zeros, 1},
        {"restore", off, set, "s", set, zeros, 1},
        {"restore of an incomplete state", off, {{0, 4, 3}}, "s", off, {{0, 4, 3}}, 0},
        {"policy lacks a value", {{0, 4, 3}}, none, "p", {{0, 4, 3}}, {{0, 4, 3, 0}}, 0},
        {"no policy", {}, none, "pr", {}, zeros, 0},
        {"nowhere to keep it", set, {}, "p", off, {}, 1},
        {"policy not to be written", off, set, "s", off, zeros, 0, policyPlace.key},
        {"state not to be written", off, set, "s", set, set, 1, savedPlace.key},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        Computer computer(row.policy, row.saved);
        computer.registry->denied = row.denied;
        computer.run(row.operations);
        EXPECT_EQ(numbersOf(policyPlace), row.policyAfter);
        EXPECT_EQ(numbersOf(savedPlace), row.savedAfter);
        EXPECT_EQ(computer.policySaves.size(), row.saves);
        EXPECT_TRUE(computer.policySaves.empty() || computer.policySaves.back() == row.policyAfter)
            << "saved after the values were written";
        EXPECT_EQ(computer.log.count("Reason: denied"), *row.denied ? 1u : 0u) << computer.log.text();
    }
}

TEST(WindowsUpdates, sayEachStepAndFailure)
{
    Computer computer({{0, 4, 3, 12}}, {});
    computer.run("p");
    const std::string found = "noAU: 0, auOptions: 4, scheduledInstallDay: 3, scheduledInstallTime: 12";
    const std::string paused = "noAU: 1, auOptions: -1, scheduledInstallDay: -1, scheduledInstallTime: -1";
    putNumbers(savedPlace, {{1, 4, 3, 12}});
    putNumbers(policyPlace, {});
    computer.run("s");
    const std::pair<int, std::string> said[] = {{4, "Pause windows updates."},
        {2, "Failed to retrieve saved windows updates state. Reason: "},
        {4, "getGroupPolicyWindowsUpdatesState. " + found}, {4, "Current WindowsUpdates state: 0, will be 1"},
        {4, "setGroupPolicyWindowsUpdatesState. " + paused}, {2, "Failed to set windows updates state. Reason: "},
        {3, "Restoring Windows Update state 1"}, {3, "Failed to get group policy windows updates state. Reason: "},
        {4, "setSavedWindowsUpdatesState. noAU: -1" + paused.substr(7)}};
    for (const auto& [level, text] : said)
        EXPECT_TRUE(computer.log.has(level, text)) << text << " not in\n" << computer.log.text();
    EXPECT_EQ(computer.registry->opened,
        (decltype(computer.registry->opened){{savedPlace.key, 0x20019}, {policyPlace.key, 0xF003F}}));
}
