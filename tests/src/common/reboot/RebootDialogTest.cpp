#include "common/process/process.h"
#include "common/reboot/flyeraudience.h"
#include "common/reboot/vxrestart.h"
#include "common/usersessions/usersessions.h"
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

using users::UserAccount;

constexpr auto restartKey = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\Unitide";
constexpr auto program = L"C:\\Program Files\\restart.exe";
const std::string arguments = "--type tarn --postpone_for 30 --force_at ";
constexpr std::int64_t now = 1'700'000'000;

std::string narrow(const std::wstring& text)
{
    return {text.begin(), text.end()};
}

/// Sessions of which each has its own kind of user; the first ones have no token. All users are administrators of this
/// computer but "user"; no domain controller answers.
struct FakeSessions : UserSessions, users::AccountDriver {
    const std::map<unsigned long, std::wstring> names{
        {3, L"admin"}, {4, L"user"}, {5, L"CORP\\admin"}, {6, L"CORP\\user"}, {7, L"unknown"}};
    std::map<void*, unsigned long> sessions; ///< by token
    std::optional<std::vector<unsigned long>> list{{1, 2, 3, 4, 5, 6, 7}};
    int accountsAsked = 0;

    std::vector<unsigned long> getUserSessions() override { return list ? *list : throw std::runtime_error("no list"); }
    SharedHandle getToken(unsigned long session) override
    {
        if (session == 1)
            VX_THROW_WIN32(ERROR_NO_TOKEN);
        void* const handle = session == 2 ? INVALID_HANDLE_VALUE : CreateEventW(nullptr, TRUE, FALSE, nullptr);
        sessions[handle] = session;
        SetLastError(ERROR_ACCESS_DENIED);
        return std::make_shared<KernelHandle>(handle);
    }
    UserAccount getUserAccountByToken(const SharedHandle& token) override
    {
        ++accountsAsked;
        return UserAccount(names.at(sessions.at(token->get())));
    }
    std::shared_ptr<users::UserAccountProperties> createUserAccountProperties(const UserAccount& account) override
    {
        return std::make_shared<users::UserAccountPropertiesImpl>(account, *this);
    }

    std::wstring computerName() override { return L"PC"; }
    users::AccountAnswer domainController(const std::wstring&) override { return {NERR_DCNotFound, nullptr}; }
    users::AccountAnswer userInfo(const wchar_t*, const std::wstring& user, unsigned long) override
    {
        const auto record = std::make_shared<USER_INFO_1>();
        record->usri1_priv = user == L"user" ? USER_PRIV_USER : USER_PRIV_ADMIN;
        return {user == L"unknown" ? static_cast<unsigned long>(NERR_UserNotFound) : 0, record};
    }
};

class RebootDialogTest : public testing::Test, public Process {
protected:
    RebootDialogTest()
    {
        registry->createKey(restartKey)->setStringValue(L"RestartCommand", program);
        clock.now = now * ticksPerSecond + 9'999'999;
    }
    ~RebootDialogTest() override { registry->deleteTree(restartKey); }

    bool start(const std::wstring& commandLine, unsigned long flags, process::Redirect, void* token) override
    {
        told.push_back(sessions->sessions.at(token));
        EXPECT_EQ(narrow(commandLine), '"' + narrow(program) + "\" " + arguments + std::to_string(now + 24 * 3600));
        EXPECT_EQ(flags, 0x430u);
        return starts;
    }
    bool start(const std::wstring& path, const std::wstring& given, const process::Credentials& credentials) override
    {
        started.push_back(narrow(given));
        EXPECT_EQ(path, program);
        EXPECT_EQ(credentials.user, L"");
        return starts;
    }

    support::LogCapture log;
    support::FakeClock clock;
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    std::shared_ptr<FakeSessions> sessions = std::make_shared<FakeSessions>();
    std::shared_ptr<registry::Registry> registry = registry::createWin32Registry();
    bool starts = true;
    std::vector<unsigned long> told;  ///< sessions
    std::vector<std::string> started; ///< arguments, in the own session
    const TarnpatchSettings keys{nullptr};
    VxRestart restart{support::FakeSettings::handle(store),
        [this] { return std::shared_ptr<IProcess>(std::shared_ptr<void>(), this); }, sessions, registry,
        clock.function()};
};

TEST_F(RebootDialogTest, tellsEachSessionThatThePolicyMeans)
{
    const struct {
        const wchar_t* policy;
        std::vector<unsigned long> told;
        int accountsAsked;
    } rows[] = {
        {L"all_users", {3, 4, 5, 6, 7}, 0},
        {L"admin_users", {3, 5}, 5},
        {L"nobody", {}, 0},
        {L"no such policy", {}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.policy));
        store->setStringValue(keys.installation.reboot.showFlyerPolicy.key(), row.policy);
        told.clear();
        sessions->accountsAsked = 0;
        EXPECT_TRUE(restart.RebootDialog::showRebootDialog());
        EXPECT_EQ(told, row.told);
        EXPECT_EQ(sessions->accountsAsked, row.accountsAsked);
    }
    EXPECT_TRUE(isSessionTold(static_cast<ShowFlyerPolicyItem>(3), {})) << "a number of no policy";
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
    sessions->list = {{3, 4}};
    EXPECT_TRUE(restart.RebootDialog::showRebootDialog());
    EXPECT_EQ(told, sessions->list);
    EXPECT_TRUE(log.has(3, "Failed to perform reboot for session: 3")) << log.text();
    sessions->list->clear();
    EXPECT_TRUE(restart.RebootDialog::showRebootDialog()) << "nobody is logged on";
    sessions->list.reset();
    EXPECT_FALSE(restart.RebootDialog::showRebootDialog());
    EXPECT_TRUE(log.has(2, "Failed to trigger reboot through LUMO: no list")) << log.text();
}

TEST_F(RebootDialogTest, runsTheRestartProgramInItsOwnSessionWhileThereIsOne)
{
    constexpr auto most = std::numeric_limits<Ticks>::max();
    const std::pair<std::int64_t, std::int64_t> rows[] = {
        {600, now + 600}, {-2, now - 2}, {most, most / ticksPerSecond}};
    for (const auto& [forceIn, forceAt] : rows) {
        store->setInt64Value(keys.installation.reboot.forceInSeconds.key(), forceIn);
        ASSERT_TRUE(restart.showRebootDialog());
        EXPECT_EQ(started.back(), arguments + std::to_string(forceAt));
    }
    EXPECT_TRUE(log.has(4, "Reboot command line: " + narrow(program) + " with arguments " + started[0])) << log.text();
    starts = false;
    EXPECT_FALSE(restart.showRebootDialog());
    EXPECT_TRUE(log.has(2, "Failed to start process: " + narrow(program) + " " + started.back()));
    started.clear();
    registry->openKey(restartKey, registry::allAccess)->deleteValue(L"RestartCommand");
    EXPECT_FALSE(restart.showRebootDialog());
    EXPECT_FALSE(restart.rebootForSession(sessions->getToken(3)));
    EXPECT_TRUE(started.empty() && told.empty());
    EXPECT_EQ(log.count("Failed to get executable params: Type: Win32Exception"), 2u) << log.text();
}

} // namespace
} // namespace vx::tarn::common
