#include "fakedrivers.h"
#include "priveleges/lsauserprivilegesholerimpl.h"
#include "process/systemlaunchdriver.h"
#include "support/logcapture.h"
#include "vxtl-process/process/process.h"
#include "vxtl-process/users/useraccountpropertiesimpl.h"
#include "vxtl/win32exception.h"

using namespace vx;
using namespace vx::process;

namespace {

const std::wstring none;
const std::wstring program = L"C:\\windows\\system32\\cmd.exe"; // every Windows has it

bool isImpersonating()
{
    HANDLE token = nullptr;
    return OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token) && CloseHandle(token);
}

/// Is its own driver: starts nothing and records how it was asked; all tokens are those of this process.
struct LaunchScheme : testing::Test, SystemLaunchDriver {
    FakeAccountDriver accounts;
    FakePolicyDriver policy;
    bool administrator = true;
    bool launchFails = false;
    support::LogCapture log;

    std::string how;
    LaunchRequest request;
    bool impersonated = false;
    std::weak_ptr<void> token;

    LaunchScheme() { policy.rights = {L"SeAssignPrimaryTokenPrivilege"}; }
    LaunchedProcess create(const LaunchRequest& given) override { return record("create", given); }
    LaunchedProcess createAsUser(void*, const LaunchRequest& given) override { return record("asUser", given); }
    LaunchedProcess createWithLogon(const Credentials&, const LaunchRequest& given) override
    {
        return record("withLogon", given);
    }
    SharedHandle logon(const Credentials&) override
    {
        const SharedHandle result = ownToken();
        token = result;
        return result;
    }
    bool hasEffectiveAdminRights(void*) override { return administrator; }
    std::shared_ptr<users::UserAccountProperties> accountProperties(const users::UserAccount& account) override
    {
        return std::make_shared<users::UserAccountPropertiesImpl>(account, accounts);
    }
    std::shared_ptr<priveleges::IPrivelegesHolder> privelegesHolder(const std::wstring& name) override
    {
        EXPECT_EQ(name, L"HERE\\joe");
        return std::make_shared<priveleges::LsaUserPrivilegesHolerImpl>(name, nullptr, policy);
    }
    LaunchedProcess record(const char* name, const LaunchRequest& given)
    {
        how = name;
        request = given;
        impersonated = isImpersonating();
        if (launchFails)
            VX_THROW_WIN32(ERROR_LOGON_FAILURE, L"launch");
        return {std::make_shared<KernelHandle>(nullptr), std::make_shared<KernelHandle>(nullptr)};
    }
    void launch(const std::wstring& user = L"joe", const std::wstring& arguments = none)
    {
        Process(program, arguments, none, {L"HERE", user, L"s3cret"}, *this);
    }
};

} // namespace

TEST_F(LaunchScheme, elevatesOnlyAnAdministratorWhoMayAssignTokens)
{
    const std::tuple<long, const wchar_t*, bool, const char*> rows[] = {
        {0, L"SeAssignPrimaryTokenPrivilege", true, "asUser"},
        {0, L"SeAssignPrimaryTokenPrivilege", false, "withLogon"},
        {0, L"SeAssignPrimaryToken", true, "withLogon"},
        {-5, L"SeAssignPrimaryTokenPrivilege", true, "withLogon"},
    };
    for (const auto& [status, right, isAdministrator, expected] : rows) {
        policy.status = status;
        policy.rights = {right};
        administrator = isAdministrator;
        launch();
        EXPECT_EQ(how, expected);
        EXPECT_EQ(impersonated, how == "asUser");
        EXPECT_FALSE(isImpersonating());
        EXPECT_TRUE(token.expired());
        EXPECT_EQ(request.flags, 0x04000010u);
        EXPECT_EQ(request.showWindow, 11);
    }
    EXPECT_EQ(log.count("Using elevated run scheme"), 1u) << log.text();
    EXPECT_EQ(log.count("Using non-elevated run scheme"), 3u) << log.text();
    EXPECT_TRUE(log.has(2, "Reason: getPolicyHandle failed")) << log.text();
    EXPECT_EQ(log.count("s3cret"), 0u) << log.text();
    EXPECT_EQ(log.count("HERE\\joe:<password>'"), 4u) << log.text();
}

TEST_F(LaunchScheme, leavesNothingBehindWhenTheLaunchFails)
{
    launchFails = true;
    EXPECT_THROW(launch(), Win32Exception);
    EXPECT_TRUE(impersonated);
    EXPECT_FALSE(isImpersonating());
    EXPECT_TRUE(token.expired());
    EXPECT_THROW(Process(L"x", 0, Redirect::None, ownToken()->get(), *this), Win32Exception);
    EXPECT_FALSE(isImpersonating());
}

TEST_F(LaunchScheme, launchesInSpiteOfWhatStandsAgainstTheAccount)
{
    const std::tuple<unsigned long, unsigned long, const char*> rows[] = {{0x800012, 0, "Account is disabled"},
        {0x800010, 0, "Account is locked out"}, {0x800000, 0, "Account has expired password"},
        {0, 2453, "NetUserGetInfo fail at level 1"}};
    for (const auto& [flags, status, line] : rows) {
        how.clear();
        accounts.flags = flags;
        accounts.userStatus = status;
        launch();
        EXPECT_EQ(how, "asUser");
        EXPECT_EQ(log.count(line), 1u) << log.text();
    }
}

TEST_F(LaunchScheme, startsAsTheCallerWithoutAUser)
{
    for (const wchar_t* arguments : {L"a b", L" a b"}) {
        launch(none, arguments);
        EXPECT_EQ(how, "create");
        EXPECT_EQ(request.flags, 0x0C000000u);
        EXPECT_EQ(request.commandLine, program + L" a b");
    }
    EXPECT_EQ(log.count("with credentials"), 0u);
}

TEST_F(LaunchScheme, givesATokensChildItsDesktopOrHidesIt)
{
    Process(L"x", 0x430, Redirect::None, ownToken()->get(), *this);
    EXPECT_EQ(request.desktop, L"winsta0\\default");
    EXPECT_FALSE(request.showWindow || request.standardHandles);
    EXPECT_EQ(request.flags, 0x430u);
    EXPECT_TRUE(request.environment);
    EXPECT_TRUE(impersonated);
    EXPECT_EQ(log.count("Launching process 'x' with credentials: '"), 1u) << log.text();

    Process(L"x", 0x08000400, Redirect::StandardOutput, ownToken()->get(), *this);
    EXPECT_EQ(request.desktop, L"");
    EXPECT_EQ(request.showWindow, 11);
    EXPECT_EQ(request.flags, 0x410u);
    ASSERT_TRUE(request.standardHandles);
    EXPECT_EQ(request.standardHandles->input, INVALID_HANDLE_VALUE);
    EXPECT_NE(request.standardHandles->output, INVALID_HANDLE_VALUE);
}
