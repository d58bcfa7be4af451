#include "vxtl/users/useraccount.h"
#include "vxtl/users/impersonatedscope.h"
#include "vxtl/win32exception.h"

#include <windows.h>

using namespace vx::users;

TEST(UserAccount, splitsAndJoinsItsName)
{
    struct {
        const wchar_t *text, *domain, *user, *form0, *form1, *form2;
    } rows[] = {
        {L"D\\u", L"D", L"u", L"D\\u", L"u", L"u@D"},
        {L"u", L"", L"u", L"u", L"u", L"u"},
        {L"\\u", L"", L"u", L"u", L"u", L"u"},
        {L"D\\u\\v", L"D", L"u\\v", L"D\\u\\v", L"u\\v", L"u\\v@D"},
        {L"u@D", L"", L"u@D", L"u@D", L"u@D", L"u@D"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(row.text)));
        const UserAccount account{std::wstring(row.text)};
        EXPECT_EQ(account.domain(), row.domain);
        EXPECT_EQ(account.user(), row.user);
        EXPECT_EQ(account.qualifiedName(), row.form0);
        EXPECT_EQ(account.qualifiedName(NameForm(7)), row.form0);
        EXPECT_EQ(account.qualifiedName(NameForm(1)), row.form1);
        EXPECT_EQ(account.qualifiedName(NameForm(2)), row.form2);
    }
}

TEST(UserAccount, namesTheTokensUser)
{
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    const UserAccount account(token);
    CloseHandle(token);
    wchar_t name[256];
    DWORD size = 256;
    ASSERT_TRUE(GetUserNameW(name, &size));
    EXPECT_EQ(account.user(), name);
    EXPECT_FALSE(account.domain().empty());
    try {
        UserAccount none(static_cast<void*>(nullptr));
        FAIL() << "no exception";
    } catch (const vx::Win32Exception& exception) {
        EXPECT_THAT(exception.what(), testing::HasSubstr("vx::users::`anonymous-namespace'::getNamesByToken,"));
    }
}

TEST(ImpersonatedScope, refusesWhatIsNoToken)
{
    EXPECT_FALSE(ImpersonatedScope(nullptr).impersonated());
    const HANDLE noToken = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    try {
        ImpersonatedScope scope(noToken);
        RevertToSelf();
        ADD_FAILURE() << "no exception";
    } catch (const vx::Win32Exception& exception) {
        EXPECT_THAT(exception.what(), testing::HasSubstr("Function: vx::users::ImpersonatedScope::ImpersonatedScope,"));
    }
    CloseHandle(noToken);
}
