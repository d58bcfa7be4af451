#include "parsekeyname.h"
#include "support/thrown.h"
#include "vxtl/exception.h"

using namespace vx::registry::details;

TEST(ParseKeyName, cutsBehindAKnownRootOnly)
{
    const std::tuple<const wchar_t*, std::uint32_t, const wchar_t*> rows[] = {
        {L"HKEY_LOCAL_MACHINE", 0x80000002, L""},
        {L"HKEY_LOCAL_MACHINE\\", 0x80000002, L""},
        {L"HKEY_CLASSES_ROOT\\a\\b", 0x80000000, L"a\\b"},
        {L"HKEY_CURRENT_USER\\Software", 0x80000001, L"Software"},
        {L"HKEY_CURRENT_USER_LOCAL_SETTINGS\\x", 0x80000007, L"x"},
    };
    for (const auto& [text, root, subkey] : rows) {
        const KeyName name = parseKeyName(text);
        EXPECT_EQ(std::pair(name.root, name.subkey), std::pair(root, std::wstring(subkey)));
    }
    for (const wchar_t* text : {L"", L"\\x", L"HKLM\\x", L"hkey_local_machine\\x", L"HKEY_LOCAL_MACHIN",
             L"HKEY_LOCAL_MACHINES\\x", L" HKEY_USERS"})
        EXPECT_EQ(support::thrown<vx::BaseException>([&] { parseKeyName(text); }).reason(),
            L"Root registry prefix is not found in the full registry key name.");
}
