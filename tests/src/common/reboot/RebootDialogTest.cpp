#include "common/process/iprocess.h"
#include "common/reboot/vxrestart.h"
#include "common/usersessions/iusersessions.h"
#include "support/fakeclock.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "vxtl-process/process/credentials.h"
#include "vxtl-process/process/redirect.h"
#include "vxtl-process/users/useraccountpropertiesimpl.h"
#include "vxtl/registry.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <lmaccess.h>
#include <lmerr.h>

namespace vx::tarn::common {
namespace {

using testing::ElementsAreArray;
using users::UserAccount;

constexpr auto restartKey = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\Unitide";
constexpr auto program = L"C:\\Program Files\\restart.exe";
const std::string arguments = "--type tarn --postpone_for 30 --force_at ";

std::string narrow(const std::wstring& text)
{
    return {text.begin(), text.end()};
}

/// Users of this computer only, all of them administrators but "user"; no domain controller answers.
struct FakeAccounts : users::AccountDriver {
    std::wstring computerName() override { return L"PC"; }
    users::AccountAnswer domainController(const std::wstring&) override { return {NERR_DCNotFound, nullptr}; }
    users::AccountAnswer userInfo(const wchar_t*, const std::wstring& user, unsigned long) override
    {
        const auto record = std::make_shared<USER_INFO_1>();
        record->usri1_priv = user == L"user" ? USER_PRIV_USER : USER_PRIV_ADMIN;
        return {user == L"unknown" ? static_cast<unsigned long>(NERR_UserNotFound) : 0, record};
    }
};

/// Sessions of which each has its own kind of user; the first ones have no token.
struct FakeSessions : IUserSessions {
    const std::map<unsigned long, std::wstring> names{
        {3, L"admin"}, {4, L"user"}, {5, L"CORP\\admin"}, {6, L"CORP\\user"}, {7, L"unknown"}};
    std::map<void*, unsigned long> sessions; ///< by token
    std::vector<unsigned long> list{1, 2, 3, 4, 5, 6, 7};
    int accountsAsked = 0;
    FakeAccounts accounts;

    std::vector<unsigned long> getUserSessions() override
    {
        if (list.empty())
            throw std::runtime_error("no list");
        return list;
    }
    SharedHandle getToken(unsigned long session) override
    {
        if (session == 1)
            VX_THROW_WIN32(ERROR_NO_TOKEN);
        void* const handle = session == 2 ? INVALID_HANDLE_VALUE : CreateEventW(nullptr, TRUE, FALSE, nullptr);
        sessions[handle] = session;
        SetLastError(ERROR_ACCESS_DENIED);
        return std::make_shared<KernelHandle>(handle);
    }
    UserAccount createUserAccount(const std::wstring& name) override { return UserAccount(name); }
    UserAccount createUserAccount(const std::wstring& domain, const std::wstring& user) override
    {
        return {domain, user};
    }
    UserAccount getUserAccountByToken(const SharedHandle& token) override
    {
        ++accountsAsked;
        return UserAccount(names.at(sessions.at(token->get())));
    }
    std::shared_ptr<users::UserAccountProperties> createUserAccountProperties(const UserAccount& account) override
    {
        return std::make_shared<users::UserAccountPropertiesImpl>(account, accounts);
    }
};

class RebootDialogTest : public testing::Test, public IProcess {
protected:
    RebootDialogTest() { registry->createKey(restartKey)->setStringValue(L"RestartCommand", program); }
    ~RebootDialogTest() override { registry->deleteTree(restartKey); }

    bool start(const std::wstring& commandLine, unsigned long flags, process::Redirect, void* token) override
    {
        started.push_back("session " + std::to_string(sessions->sessions.at(token)) + ": " + narrow(commandLine));
        EXPECT_EQ(flags, 0x430u);
        return starts;
    }
    bool start(const std::wstring& path, const std::wstring& given, const process::Credentials& credentials) override
    {
        started.push_back(narrow(path) + "|" + narrow(given));
        EXPECT_EQ(credentials.user, L"");
        return starts;
    }
    void wait() override {}
    std::uint32_t getReturnCode() override { return 0; }
    const SharedHandle& getHandle() override { return handle; }

    support::LogCapture log;
    support::FakeClock clock;
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    std::shared_ptr<FakeSessions> sessions = std::make_shared<FakeSessions>();
    std::shared_ptr<registry::Registry> registry = registry::createWin32Registry();
    bool starts = true;
    std::vector<std::string> started;
    SharedHandle handle;
    const TarnpatchSettings keys{nullptr};
    VxRestart restart{support::FakeSettings::handle(store),
        [this] { return std::shared_ptr<IProcess>(std::shared_ptr<void>(), this); }, sessions, registry,
        clock.function()};
};

TEST_F(RebootDialogTest, tellsEachSessionThatThePolicyMeans)
{
    const struct {
        std::wstring policy;
        std::vector<unsigned long> told;
        int accountsAsked;
    } rows[] = {
        {L"all_users", {3, 4, 5, 6, 7}, 0},
        {L"admin_users", {3, 5}, 5},
        {L"nobody", {}, 0},
        {L"no such policy", {}, 0},
    };
    const std::string forceAt = std::to_string(clock.now / ticksPerSecond + 24 * 3600);
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.policy));
        store->setStringValue(keys.installation.reboot.showFlyerPolicy.key(), row.policy);
        started.clear();
        sessions->accountsAsked = 0;
        EXPECT_TRUE(restart.RebootDialog::showRebootDialog());
        std::vector<std::string> expected;
        for (const auto session : row.told)
            expected.push_back(
                "session " + std::to_string(session) + ": \"" + narrow(program) + "\" " + arguments + forceAt);
        EXPECT_THAT(started, ElementsAreArray(expected));
        EXPECT_EQ(sessions->accountsAsked, row.accountsAsked);
    }
    const std::string noToken = "Failed to get token for the session ";
    EXPECT_TRUE(log.has(3, noToken + "1. Token is null. GetLastError() = 1008")) << log.text();
    EXPECT_TRUE(log.has(3, noToken + "2. Token is null. GetLastError() = 5"));
    EXPECT_TRUE(log.has(4, "Set reboot variable has been successfully performed at session 3"));
    EXPECT_EQ(log.count("Domain controller not found, trying using local host"), 2u);
    // Session 7 with "admin_users", and all that have a token with the last row.
    EXPECT_EQ(log.count("Failed to check if reboot flyer should be displayed: "), 6u);
}

TEST_F(RebootDialogTest, goesOnBehindASessionThatCannotBeToldAndFailsWithoutAList)
{
    starts = false;
    sessions->list = {3, 4};
    EXPECT_TRUE(restart.RebootDialog::showRebootDialog());
    EXPECT_EQ(started.size(), 2u);
    EXPECT_TRUE(log.has(3, "Failed to perform reboot for session: 3")) << log.text();
    EXPECT_TRUE(log.has(2, "Failed to start process: \"C:\\Program Files\\restart.exe\" --type tarn "));
    sessions->list.clear();
    EXPECT_FALSE(restart.RebootDialog::showRebootDialog());
    EXPECT_TRUE(log.has(2, "Failed to trigger reboot through LUMO: no list")) << log.text();
}

TEST_F(RebootDialogTest, runsTheRestartProgramInItsOwnSession)
{
    store->setInt64Value(keys.installation.reboot.forceInSeconds.key(), 600);
    EXPECT_TRUE(restart.showRebootDialog());
    const std::string command = arguments + std::to_string(clock.now / ticksPerSecond + 600);
    EXPECT_THAT(started, testing::ElementsAre(narrow(program) + "|" + command));
    EXPECT_TRUE(log.has(5, "Force reboot in: 600 hours")) << log.text();
    EXPECT_TRUE(log.has(4, "Reboot command line: " + narrow(program) + " with arguments " + command));
    starts = false;
    EXPECT_FALSE(restart.showRebootDialog());
    EXPECT_TRUE(log.has(2, "Failed to start process: " + narrow(program) + " " + command));
    store->setInt64Value(keys.installation.reboot.forceInSeconds.key(), -1);
    restart.showRebootDialog();
    EXPECT_TRUE(log.has(5, "Force reboot in: 86400 hours"));
}

TEST_F(RebootDialogTest, startsNothingWithoutARestartProgram)
{
    registry->openKey(restartKey, registry::allAccess)->deleteValue(L"RestartCommand");
    EXPECT_FALSE(restart.showRebootDialog());
    EXPECT_FALSE(restart.rebootForSession(sessions->getToken(3)));
    EXPECT_EQ(started.size(), 0u);
    EXPECT_EQ(log.count("Failed to get executable params: Type: Win32Exception"), 2u) << log.text();
    EXPECT_EQ(log.count("Failed to get restart executable parameters"), 2u);
}

} // namespace
} // namespace vx::tarn::common
