#include "common/reboot/computerrebooter.h"
#include "support/logcapture.h"
#include "vxtl/handle.h"

#include <windows.h>

using namespace vx;
using namespace vx::tarn::common;

namespace {

struct Answers {
    std::optional<PrivilegeFailure> privilege;
    std::optional<unsigned long> refusal;
    int reboots = 0;
};

struct FakeDriver : IRebootDriver {
    explicit FakeDriver(Answers& given) : answers(given) {}
    std::optional<PrivilegeFailure> enableShutdownPrivilege() override { return answers.privilege; }
    std::optional<unsigned long> reboot() override { return ++answers.reboots, answers.refusal; }
    Answers& answers;
};

} // namespace

TEST(ComputerRebooter, asksTheSystemOnceItMayAndSaysWhatCameOfIt)
{
    using Step = PrivilegeFailure::Step;
    struct {
        Answers answers;
        int level;
        const char* logged;
    } rows[] = {
        {{{}, {}}, 4, "ExitWindowsEx for reboot successfully completed."},
        // A failure is one whatever code comes with it.
        {{{}, 0}, 2, "Error initiating shutdown. Last error code: 0"},
        {{PrivilegeFailure{Step::OpenToken, 5}, {}}, 2, "Failed to open process token, error 5"},
        {{PrivilegeFailure{Step::AdjustToken, 6}, {}}, 2, "Failed to adjust token privileges, error 6"},
    };
    for (auto& row : rows) {
        const support::LogCapture log;
        EXPECT_EQ(ComputerRebooter(std::make_unique<FakeDriver>(row.answers)).initiateReboot(), row.level == 4);
        EXPECT_EQ(row.answers.reboots, row.answers.privilege ? 0 : 1);
        EXPECT_TRUE(log.has(row.level, row.logged)) << log.text();
        EXPECT_EQ(log.count("Failed to acquire shutdown privileges"), row.answers.privilege ? 1u : 0u);
    }
}

// The reboot itself has no test here: it would end this program as if all had gone well.
TEST(RebootDriver, enablesThePrivilegeThatARebootTakes)
{
    HANDLE handle = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY | TOKEN_ADJUST_PRIVILEGES, &handle));
    const KernelHandle token(handle);
    TOKEN_PRIVILEGES off = {1, {}};
    ASSERT_TRUE(LookupPrivilegeValueW(nullptr, SE_SHUTDOWN_NAME, &off.Privileges[0].Luid));
    const auto switchOff = [&] {
        TOKEN_PRIVILEGES before = {};
        DWORD size = 0;
        EXPECT_TRUE(AdjustTokenPrivileges(token.get(), FALSE, &off, sizeof(before), &before, &size));
        return before.Privileges[0].Attributes;
    };
    switchOff();
    EXPECT_EQ(switchOff(), 0u);
    EXPECT_FALSE(RebootDriver().enableShutdownPrivilege());
    EXPECT_EQ(switchOff(), SE_PRIVILEGE_ENABLED);
}
