#include "vxtl/parsekeyname.h"
#include "support/thrown.h"
#include "vxtl/exception.h"
#include "vxtl/multistring.h"

using namespace vx::registry::details;

TEST(ParseKeyName, cutsBehindAKnownRoot)
{
    struct {
        const wchar_t* name;
        std::uint32_t root;
        const wchar_t* subkey;
    } const rows[] = {
        {L"HKEY_LOCAL_MACHINE", 0x80000002, L""},
        {L"HKEY_LOCAL_MACHINE\\", 0x80000002, L""},
        {L"HKEY_CLASSES_ROOT\\a\\b", 0x80000000, L"a\\b"},
        {L"HKEY_CURRENT_USER\\Software", 0x80000001, L"Software"},
        {L"HKEY_CURRENT_USER_LOCAL_SETTINGS\\x", 0x80000007, L"x"},
    };
    for (const auto& row : rows) {
        const KeyName name = parseKeyName(row.name);
        EXPECT_EQ(name.root, row.root);
        EXPECT_EQ(name.subkey, row.subkey);
    }
}

TEST(ParseKeyName, refusesEverythingElse)
{
    for (const wchar_t* name : {L"", L"\\x", L"HKLM\\x", L"hkey_local_machine\\x", L"HKEY_LOCAL_MACHIN",
             L"HKEY_LOCAL_MACHINES\\x", L" HKEY_USERS"}) {
        SCOPED_TRACE(testing::PrintToString(name));
        const auto failure = support::thrown<vx::BaseException>([&] { parseKeyName(name); });
        EXPECT_EQ(failure.reason(), L"Root registry prefix is not found in the full registry key name.");
        EXPECT_THAT(failure.what(), testing::HasSubstr("Function: vx::registry::details::parseKeyName,"));
    }
}

TEST(MultiString, comesBackAsItWasJoined)
{
    for (const auto& list : {std::vector<std::wstring>{}, {L"a"}, {L"a", L"b"}, {std::wstring(), L"b"}})
        EXPECT_EQ(splitMultiString(joinMultiString(list)), list);
}
