#include "common/windowsupdates/windowsupdates.h"
#include "common/windowsupdates/igrouppolicy.h"
#include "fakeregistry.h"
#include "support/logcapture.h"

#include <array>

using namespace vx;
using namespace vx::tarn::common;

namespace {

using Lines = std::vector<std::string>;
/// The first values of a key, in the order of their reading; none: there is no key.
using Numbers = std::optional<std::vector<std::int32_t>>;

constexpr const wchar_t* policyKey = L"HKEY_LOCAL_MACHINE\\Software\\Policies\\Microsoft\\Windows\\WindowsUpdate\\AU";
constexpr const wchar_t* savedKey = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\tarn";
using Names = std::array<const wchar_t*, 4>;
constexpr Names policyNames = {L"NoAutoUpdate", L"AUOptions", L"ScheduledInstallDay", L"ScheduledInstallTime"};
constexpr Names savedNames = {L"WUState", L"WUOptions", L"WUScheduledInstallDay", L"WUScheduledInstallTime"};

struct Computer : IGroupPolicy {
    Computer(const Numbers& policy, const Numbers& saved)
    {
        put(policyKey, policyNames, policy);
        put(savedKey, savedNames, saved);
    }
    void put(const wchar_t* key, const Names& names, const Numbers& numbers)
    {
        for (std::size_t i = 0; numbers && i <= numbers->size(); ++i)
            i == 0 ? void(registry->keys[key]) : void(registry->keys[key][names[i - 1]] = (*numbers)[i - 1]);
    }
    Numbers numbers(const wchar_t* key, const Names& names) const
    {
        if (!registry->keys.contains(key))
            return {};
        std::vector<std::int32_t> result;
        for (const wchar_t* name : names)
            if (registry->keys[key].contains(name))
                result.push_back(registry->keys[key][name]);
        return result;
    }
    Numbers policy() const { return numbers(policyKey, policyNames); }
    Numbers saved() const { return numbers(savedKey, savedNames); }
    std::int32_t save(
        PolicySection section, PolicyChange change, const utils::Guid& extension, const utils::Guid& snapIn) override
    {
        EXPECT_TRUE(section == PolicySection::Machine && change == PolicyChange::Add);
        EXPECT_EQ(utils::guidToString(extension), L"35378EAC-683F-11D2-A89A-00C04FBBCFA2");
        EXPECT_EQ(utils::guidToString(snapIn), L"0F6B957E-509E-11D1-A7CC-0000F87571E3");
        policySaves.push_back(*policy());
        return -1;
    }
    void run(const std::string& operations)
    {
        WindowsUpdates updates(
            {std::shared_ptr<void>(), this}, std::make_shared<registry::Registry>(registry), nullptr);
        for (const char operation : operations)
            EXPECT_EQ(operation == 'p'   ? updates.pause()
                      : operation == 'r' ? updates.resume()
                                         : updates.restore(),
                exitstatus::success);
    }

    std::shared_ptr<FakeRegistry> registry = std::make_shared<FakeRegistry>();
    std::vector<std::vector<std::int32_t>> policySaves;
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
    } rows[] = {
        {"first pause", set, none, "p", off, set, 1},
        {"pause twice", set, none, "pp", off, set, 1},
        {"pause of what is off", {{1, 4, 3, 12}}, none, "p", {{1, 4, 3, 12}}, {{1, 4, 3, 12}}, 0},
        {"pause and resume", set, none, "pr", set, zeros, 2},
        {"pause after a crashed one, and resume", off, set, "pr", set, zeros, 1},
        {"second round goes back to zeros", set, none, "prpr", zeros, zeros, 4},
        {"resume without a pause", set, none, "r", zeros, zeros, 1},
        {"restore", off, set, "s", set, zeros, 1},
        {"restore of what is so already", {{0, 1, 1, 1}}, set, "s", {{0, 1, 1, 1}}, zeros, 0},
        {"restore without a pause", off, none, "s", off, none, 0},
        {"restore of an incomplete state", off, {{0, 4, 3}}, "s", off, {{0, 4, 3}}, 0},
        {"restore after a resume", {{1, 4, 3, 12}}, zeros, "s", zeros, zeros, 1},
        {"policy lacks a value", {{0, 4, 3}}, none, "p", {{0, 4, 3}}, {{0, 4, 3, 0}}, 0},
        {"policy lacks a value, restore", {{1, 4, 3}}, set, "s", {{1, 4, 3}}, zeros, 0},
        {"no policy", {}, none, "pr", {}, zeros, 0},
        {"nowhere to keep it", set, {}, "p", off, {}, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        Computer computer(row.policy, row.saved);
        computer.run(row.operations);
        EXPECT_EQ(computer.policy(), row.policyAfter);
        EXPECT_EQ(computer.saved(), row.savedAfter);
        EXPECT_EQ(computer.policySaves.size(), row.saves);
        EXPECT_TRUE(computer.policySaves.empty() || computer.policySaves.back() == *row.policyAfter)
            << "saved after the values were written";
    }
}

TEST(WindowsUpdates, openKeysWithTheAccessThatEachUseNeeds)
{
    Computer computer({{0, 4, 3, 12}}, {{}});
    computer.run("p");
    EXPECT_EQ(computer.registry->opened, (decltype(computer.registry->opened){{savedKey, 0x20019}, {policyKey, 0xF003F},
                                             {policyKey, 0xF003F}, {savedKey, 0x2001F}}));
}

TEST(WindowsUpdates, sayEachStepAndFailure)
{
    const std::string policyNumbers = "noAU: 0, auOptions: 4, scheduledInstallDay: 3, scheduledInstallTime: 12";
    const std::string nothing = "auOptions: -1, scheduledInstallDay: -1, scheduledInstallTime: -1";
    const struct {
        const char* label;
        Numbers policy, saved;
        const wchar_t* readOnly;
        const char* operations;
        Lines logged;
    } rows[] = {
        {"pause", {{0, 4, 3, 12}}, {{0, 4, 3}}, L"", "p",
            {"4 Pause windows updates.", "2 Failed to retrieve saved windows updates state. Reason: no value",
                "4 getGroupPolicyWindowsUpdatesState. " + policyNumbers, "4 Current WindowsUpdates state: 0, will be 1",
                "4 setGroupPolicyWindowsUpdatesState. noAU: 1, " + nothing,
                "4 setSavedWindowsUpdatesState. " + policyNumbers}},
        {"resume", {{0, 4, 3, 12}}, {{}}, L"", "r",
            {"4 Resume windows updates.", "4 getGroupPolicyWindowsUpdatesState. " + policyNumbers,
                "4 Current WindowsUpdates state: 0, will be -1",
                "4 setGroupPolicyWindowsUpdatesState. noAU: -1, " + nothing,
                "4 setSavedWindowsUpdatesState. noAU: -1, " + nothing}},
        {"restore without policy", {}, {{7, 4, 3, 12}}, L"", "s",
            {"3 Restoring Windows Update state 7", "3 Failed to get group policy windows updates state. Reason: no key",
                "3 Failed to get group policy windows updates state.",
                "4 setSavedWindowsUpdatesState. noAU: -1, " + nothing}},
        {"policy not to be written", {{0, 4, 3, 12}}, {{7, 4, 3, 12}}, policyKey, "s",
            {"3 Restoring Windows Update state 7", "4 getGroupPolicyWindowsUpdatesState. " + policyNumbers,
                "4 Current WindowsUpdates state: 0, will be 7",
                "3 Failed to get group policy windows updates state. Reason: denied",
                "4 setSavedWindowsUpdatesState. noAU: -1, " + nothing}},
        {"state not to be written", {{7, 4, 3, 12}}, {{7, 4, 3, 12}}, savedKey, "s",
            {"3 Restoring Windows Update state 7",
                "4 getGroupPolicyWindowsUpdatesState. noAU: 7" + policyNumbers.substr(7),
                "4 Current WindowsUpdates state: 7, will be 7",
                "2 Failed to set windows updates state. Reason: denied"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        Computer computer(row.policy, row.saved);
        computer.registry->readOnly[row.readOnly];
        computer.run(row.operations);
        Lines logged;
        for (const auto& line : computer.log.lines())
            logged.push_back(std::to_string(line.level) + " " + line.text);
        EXPECT_EQ(logged, row.logged);
    }
}
