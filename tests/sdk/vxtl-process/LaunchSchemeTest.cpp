#include "fakeaccountdriver.h"
#include "ownaccount.h"
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
    std::wstring right = L"SeAssignPrimaryTokenPrivilege";
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

/// Is its own driver: starts nothing and records how it was asked; the tokens are this process's own.
struct LaunchScheme : testing::Test, LaunchDriver {
    FakeAccountDriver accounts;
    std::shared_ptr<FakeHolder> holder = std::make_shared<FakeHolder>(); ///< null: unreadable
    bool administrator = true;
    bool launchFails = false;
    support::LogCapture log;
    std::wstring program = std::wstring(MAX_PATH, L'\0');

    std::string how;
    LaunchRequest request;
    bool impersonated = false;
    std::weak_ptr<KernelHandle> token;
    std::weak_ptr<void> environment;

    LaunchScheme() { program.resize(GetModuleFileNameW(nullptr, program.data(), MAX_PATH)); }

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
        return holder ? holder : throw std::runtime_error("unreadable");
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
    struct {
        const char* trace;
        const wchar_t* right;
        bool administrator;
        const char* how;
        const char* line;
    } rows[] = {
        {"both", L"SeAssignPrimaryTokenPrivilege", true, "asUser", "Using elevated run scheme"},
        {"no administrator", L"SeAssignPrimaryTokenPrivilege", false, "withLogon", "Using non-elevated run scheme"},
        {"no privilege", L"SeAssignPrimaryToken", true, "withLogon", "Using non-elevated run scheme"},
        {"privileges unreadable", nullptr, true, "withLogon", "Using non-elevated run scheme"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        if (row.right)
            holder->right = row.right;
        else
            holder = nullptr;
        administrator = row.administrator;
        launch();
        EXPECT_EQ(how, row.how);
        EXPECT_TRUE(log.has(4, row.line)) << log.text();
        EXPECT_EQ(impersonated, how == "asUser");
        EXPECT_FALSE(isImpersonating());
        EXPECT_TRUE(token.expired());
        EXPECT_EQ(request.flags, 0x04000010u);
        EXPECT_EQ(request.showWindow, 11);
    }
    EXPECT_TRUE(log.has(2, "Exception occurred. unreadable")) << log.text();
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
    const SharedHandle own = ownToken();
    EXPECT_THROW(Process(L"x", 0, Redirect::None, own->get(), *this), Win32Exception);
    EXPECT_FALSE(isImpersonating());
    EXPECT_TRUE(environment.expired());
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
        how.clear();
        accounts.flags = row.flags;
        accounts.userStatus = row.status;
        launch();
        EXPECT_EQ(how, "asUser");
        EXPECT_EQ(log.count(row.line), 1u) << log.text();
    }
}

TEST_F(LaunchScheme, startsAsTheCallerWithoutAUser)
{
    launch(none, L"a b");
    EXPECT_EQ(how, "create");
    EXPECT_EQ(request.flags, 0x0C000000u);
    EXPECT_EQ(request.application, program);
    EXPECT_EQ(request.commandLine, program + L" a b");
    EXPECT_EQ(request.workingDirectory, program.substr(0, program.rfind(L'\\')));
    launch(none, L" a");
    EXPECT_EQ(request.commandLine, program + L" a");
    EXPECT_EQ(log.count("with credentials"), 0u);
}

TEST_F(LaunchScheme, givesATokensChildItsDesktopOrHidesIt)
{
    const SharedHandle own = ownToken();
    Process(L"x", 0x430, Redirect::None, own->get(), *this);
    EXPECT_EQ(request.desktop, L"winsta0\\default");
    EXPECT_FALSE(request.showWindow);
    EXPECT_FALSE(request.standardHandles);
    EXPECT_EQ(request.flags, 0x430u);
    EXPECT_TRUE(request.environment);
    EXPECT_TRUE(impersonated);

    Process(L"x", 0x08000400, Redirect::StandardOutput, own->get(), *this);
    EXPECT_EQ(request.desktop, L"");
    EXPECT_EQ(request.showWindow, 11);
    EXPECT_EQ(request.flags, 0x410u);
    ASSERT_TRUE(request.standardHandles);
    EXPECT_EQ(request.standardHandles->input, INVALID_HANDLE_VALUE);
    EXPECT_NE(request.standardHandles->output, INVALID_HANDLE_VALUE);
}
