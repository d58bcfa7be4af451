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

TEST_F(LaunchScheme, elevatesOnlyAnAdministratorWhoMayAssignTokensInSpiteOfWhatStandsAgainstTheAccount)
{
    constexpr auto may = L"SeAssignPrimaryTokenPrivilege";
    const struct {
        const char* logged;
        bool elevates, administrator;
        long policyStatus;
        const wchar_t* right;
        unsigned long userStatus = 0, flags = 0;
    } rows[] = {
        {"Using elevated run scheme", true, true, 0, may},
        {"Using non-elevated run scheme", false, false, 0, may},
        {"Using non-elevated run scheme", false, true, 0, L"SeAssignPrimaryToken"},
        {"Reason: getPolicyHandle failed", false, true, -5, may},
        {"NetUserGetInfo fail at level 1", true, true, 0, may, 2453},
        {"Account is disabled", true, true, 0, may, 0, 0x800012},
        {"Account is locked out", true, true, 0, may, 0, 0x800010},
        {"Account has expired password", true, true, 0, may, 0, 0x800000},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.logged);
        policy.status = row.policyStatus;
        policy.rights = {row.right};
        administrator = row.administrator;
        accounts.userStatus = row.userStatus;
        accounts.flags = row.flags;
        launch();
        EXPECT_EQ(how, row.elevates ? "asUser" : "withLogon");
        EXPECT_EQ(impersonated, row.elevates);
        EXPECT_GE(log.count(row.logged), 1u) << log.text();
        EXPECT_FALSE(isImpersonating());
        EXPECT_TRUE(token.expired());
        EXPECT_EQ(request.flags, 0x04000010u);
        EXPECT_EQ(request.showWindow, 11);
    }
    EXPECT_EQ(log.count("s3cret"), 0u) << log.text();
    EXPECT_EQ(log.count("HERE\\joe:<password>'"), std::size(rows)) << log.text();
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

TEST_F(LaunchScheme, startsAsTheCallerWithoutAUser)
{
    for (const wchar_t* arguments : {L"a b", L" a b"}) {
        launch(none, arguments);
        EXPECT_EQ(how, "create");
        EXPECT_EQ(request.flags, 0x0C000000u);
        EXPECT_EQ(request.commandLine, program + L" a b");
    }
}

TEST_F(LaunchScheme, givesATokensChildItsDesktopOrHidesIt)
{
    Process(L"x", 0x430, Redirect::None, ownToken()->get(), *this);
    EXPECT_EQ(request.desktop, L"winsta0\\default");
    EXPECT_FALSE(request.showWindow || request.standardHandles);
    EXPECT_EQ(request.flags, 0x430u);
    EXPECT_TRUE(request.environment);
    EXPECT_TRUE(impersonated);

    Process(L"x", 0x08000400, Redirect::StandardOutput, ownToken()->get(), *this);
    EXPECT_EQ(request.desktop, L"");
    EXPECT_EQ(request.showWindow, 11);
    EXPECT_EQ(request.flags, 0x410u);
    ASSERT_TRUE(request.standardHandles);
    EXPECT_EQ(request.standardHandles->input, INVALID_HANDLE_VALUE);
    EXPECT_NE(request.standardHandles->output, INVALID_HANDLE_VALUE);
}
