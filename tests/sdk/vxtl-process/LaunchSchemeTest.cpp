#include "fakeaccountdriver.h"
#include "support/logcapture.h"
#include "vxtl/priveleges/iprivelegesholder.h"
#include "vxtl/process/process.h"
#include "vxtl/users/useraccountpropertiesimpl.h"
#include "vxtl/win32exception.h"

using namespace vx;
using namespace vx::process;

namespace {

const std::wstring none;

struct FakeHolder : priveleges::IPrivelegesHolder {
    std::wstring right;
    std::vector<std::wstring> getPrivileges() override { return {right}; }
    bool hasPrivilege(const std::wstring& name) override { return name == right; }
    bool addPrivilege(const std::wstring&) override { return false; }
    bool removePrivilege(const std::wstring&) override { return false; }
};

bool isImpersonating()
{
    HANDLE token = nullptr;
    return OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token) && CloseHandle(token);
}

/// Starts nothing and records how it was asked. Its tokens are this process's own.
struct FakeLaunchDriver : LaunchDriver {
    FakeAccountDriver accounts;
    std::shared_ptr<FakeHolder> holder = std::make_shared<FakeHolder>(); ///< null: asking throws
    bool administrator = false;
    bool launchFails = false;
    std::string how;
    LaunchRequest request;
    bool impersonated = false;
    std::weak_ptr<KernelHandle> token;
    std::weak_ptr<void> environment;

    LaunchedProcess launch(const char* name, const LaunchRequest& given)
    {
        how = name;
        request = given;
        impersonated = isImpersonating();
        if (launchFails)
            VX_THROW_WIN32(ERROR_LOGON_FAILURE, L"launch");
        return {std::make_shared<KernelHandle>(nullptr), std::make_shared<KernelHandle>(nullptr)};
    }
    LaunchedProcess create(const LaunchRequest& given) override { return launch("create", given); }
    LaunchedProcess createAsUser(void*, const LaunchRequest& given) override { return launch("asUser", given); }
    LaunchedProcess createWithLogon(const Credentials&, const LaunchRequest& given) override
    {
        return launch("withLogon", given);
    }
    SharedHandle ownToken()
    {
        HANDLE raw = nullptr;
        EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &raw));
        const auto result = std::make_shared<KernelHandle>(raw);
        token = result;
        return result;
    }
    SharedHandle logon(const Credentials&) override { return ownToken(); }
    SharedHandle duplicatePrimary(void*) override { return std::make_shared<KernelHandle>(nullptr); }
    std::shared_ptr<void> createEnvironment(void*) override
    {
        const auto block = std::make_shared<int>();
        environment = block;
        return block;
    }
    bool hasEffectiveAdminRights(void*) override { return administrator; }
    std::shared_ptr<users::UserAccountProperties> accountProperties(const users::UserAccount& account) override
    {
        return std::make_shared<users::UserAccountPropertiesImpl>(account, accounts);
    }
    std::shared_ptr<priveleges::IPrivelegesHolder> privelegesHolder(const std::wstring& name) override
    {
        EXPECT_EQ(name, L"HERE\\joe");
        if (!holder)
            VX_THROW_WIN32(ERROR_NONE_MAPPED);
        return holder;
    }
};

struct LaunchScheme : testing::Test {
    FakeLaunchDriver driver;
    support::LogCapture log;
    std::wstring program = std::wstring(MAX_PATH, L'\0');

    LaunchScheme()
    {
        program.resize(GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
        driver.holder->right = L"SeAssignPrimaryTokenPrivilege";
        driver.administrator = true;
    }
    void launch(const std::wstring& user = L"joe", const std::wstring& arguments = none)
    {
        Process(program, arguments, none, {L"HERE", user, L"s3cret"}, driver);
    }
};

} // namespace

TEST_F(LaunchScheme, elevatesOnlyAnAdministratorWhoMayAssignTokens)
{
    struct {
        const char* trace;
        bool known;
        const wchar_t* right;
        bool administrator;
        const char* how;
        const char* line;
    } rows[] = {
        {"both", true, L"SeAssignPrimaryTokenPrivilege", true, "asUser", "Using elevated run scheme"},
        {"no administrator", true, L"SeAssignPrimaryTokenPrivilege", false, "withLogon",
            "Using non-elevated run scheme"},
        {"no privilege", true, L"SeAssignPrimaryToken", true, "withLogon", "Using non-elevated run scheme"},
        {"privileges unreadable", false, L"", true, "withLogon", "Using non-elevated run scheme"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        FakeLaunchDriver fresh;
        fresh.holder = row.known ? fresh.holder : nullptr;
        if (row.known)
            fresh.holder->right = row.right;
        fresh.administrator = row.administrator;
        Process(program, none, none, {L"HERE", L"joe", L"s3cret"}, fresh);
        EXPECT_EQ(fresh.how, row.how);
        EXPECT_TRUE(log.has(4, row.line)) << log.text();
        EXPECT_EQ(fresh.impersonated, fresh.how == "asUser");
        EXPECT_FALSE(isImpersonating());
        EXPECT_TRUE(fresh.token.expired());
        EXPECT_EQ(fresh.request.flags, 0x04000010u);
        EXPECT_EQ(fresh.request.showWindow, 11);
    }
    EXPECT_EQ(log.count("s3cret"), 0u) << log.text();
    EXPECT_EQ(log.count("HERE\\joe:<password>'"), 4u) << log.text();
}

TEST_F(LaunchScheme, leavesNothingBehindWhenTheLaunchFails)
{
    driver.launchFails = true;
    EXPECT_THROW(launch(), Win32Exception);
    EXPECT_TRUE(driver.impersonated);
    EXPECT_FALSE(isImpersonating());
    EXPECT_TRUE(driver.token.expired());
    const SharedHandle token = driver.ownToken();
    EXPECT_THROW(Process(L"x", 0, Redirect::None, token->get(), driver), Win32Exception);
    EXPECT_FALSE(isImpersonating());
    EXPECT_TRUE(driver.environment.expired());
}

TEST_F(LaunchScheme, launchesInSpiteOfWhatStandsAgainstTheAccount)
{
    struct {
        unsigned long flags;
        unsigned long status;
        const char* line;
    } rows[] = {{0x800012, 0, "Account is disabled"}, {0x800010, 0, "Account is locked out"},
        {0x800000, 0, "Account has expired password"}, {0, 2453, "NetUserGetInfo fail at level 1"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        driver.how.clear();
        driver.accounts.flags = row.flags;
        driver.accounts.userStatus = row.status;
        launch();
        EXPECT_EQ(driver.how, "asUser");
        EXPECT_EQ(log.count(row.line), 1u) << log.text();
    }
}

TEST_F(LaunchScheme, startsAsTheCallerWithoutAUser)
{
    launch(none, L"a b");
    EXPECT_EQ(driver.how, "create");
    EXPECT_EQ(driver.request.flags, 0x0C000000u);
    EXPECT_EQ(driver.request.application, program);
    EXPECT_EQ(driver.request.commandLine, program + L" a b");
    EXPECT_EQ(driver.request.workingDirectory, program.substr(0, program.rfind(L'\\')));
    launch(none, L" a");
    EXPECT_EQ(driver.request.commandLine, program + L" a");
    EXPECT_EQ(log.count("with credentials"), 0u);
}

TEST_F(LaunchScheme, givesATokensChildItsDesktopOrHidesIt)
{
    const SharedHandle token = driver.ownToken();
    Process(L"x", 0x430, Redirect::None, token->get(), driver);
    EXPECT_EQ(driver.request.desktop, L"winsta0\\default");
    EXPECT_FALSE(driver.request.showWindow);
    EXPECT_FALSE(driver.request.standardHandles);
    EXPECT_EQ(driver.request.flags, 0x430u);
    EXPECT_TRUE(driver.request.environment);
    EXPECT_TRUE(driver.impersonated);

    Process(L"x", 0x08000400, Redirect::StandardOutput, token->get(), driver);
    EXPECT_EQ(driver.request.desktop, L"");
    EXPECT_EQ(driver.request.showWindow, 11);
    EXPECT_EQ(driver.request.flags, 0x410u);
    ASSERT_TRUE(driver.request.standardHandles);
    EXPECT_EQ(driver.request.standardHandles->input, INVALID_HANDLE_VALUE);
    EXPECT_NE(driver.request.standardHandles->output, INVALID_HANDLE_VALUE);
}
