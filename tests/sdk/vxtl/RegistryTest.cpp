#include "vxtl/registry.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"
#include "vxtl/wow64.h"

#include <windows.h>

using namespace vx;
using namespace vx::registry;
using support::thrown;

namespace {

constexpr const wchar_t* keyName = L"HKEY_CURRENT_USER\\Software\\TarnhdRegistryTest";

unsigned long codeOf(auto operation)
{
    return thrown<Win32Exception>(operation).code();
}

std::wstring reasonOf(auto operation)
{
    return thrown<BaseException>(operation).reason();
}

struct RegistryTest : testing::Test {
    RegistryTest()
    {
        if (registry->doesKeyExist(keyName))
            registry->deleteTree(keyName);
        key = registry->createKey(keyName);
    }
    ~RegistryTest() override { registry->deleteTree(keyName); }

    void setRaw(const wchar_t* name, DWORD type, const std::string& bytes)
    {
        ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, keyName + std::wcslen(L"HKEY_CURRENT_USER\\"), name, type,
                      bytes.data(), static_cast<DWORD>(bytes.size())),
            ERROR_SUCCESS);
    }

    std::shared_ptr<Registry> registry = createWin32Registry();
    std::shared_ptr<RegistryKey> key;
};

} // namespace

TEST_F(RegistryTest, refusesValuesOfAnotherTypeOrSize)
{
    setRaw(L"none", REG_NONE, "1234");
    setRaw(L"short", REG_DWORD, "123");
    EXPECT_EQ(reasonOf([&] { key->getInt64Value(L"none"); }), L"Invalid type of registry value: REG_DWORD is expected");
    EXPECT_EQ(reasonOf([&] { key->getInt32Value(L"short"); }),
        L"Invalid registry value size of REG_DWORD type: 4 bytes are expected, actual is 3");
    EXPECT_THROW(key->getStringValue(L"none"), BaseException);
    EXPECT_THROW(key->getMultiStringValue(L"none"), BaseException);
    EXPECT_THROW(key->getBinaryValue(L"none"), BaseException);
}

TEST_F(RegistryTest, readsTextsAndListsAsOthersLeaveThem)
{
    // No data, no terminator, text behind the NUL, an odd size; variables stay.
    const std::tuple<DWORD, std::string, const wchar_t*> texts[] = {{REG_SZ, "", L""}, {REG_SZ, {"a\0b\0", 4}, L"ab"},
        {REG_SZ, {"a\0\0\0b\0\0\0", 8}, L"a"}, {REG_SZ, {"a\0b", 3}, L"a"},
        {REG_EXPAND_SZ, {"%\0x\0%\0\0\0", 8}, L"%x%"}};
    for (const auto& [type, bytes, expected] : texts) {
        setRaw(L"text", type, bytes);
        EXPECT_EQ(key->getStringValue(L"text"), expected) << testing::PrintToString(bytes);
    }
    // No data, one byte, one terminator, none, an odd size, more empty ones at the end.
    const std::pair<std::string, std::vector<std::wstring>> lists[] = {{"", {}}, {"a", {}}, {{"a\0\0\0", 4}, {L"a"}},
        {{"a\0b\0", 4}, {L"ab"}}, {{"a\0\0\0b", 5}, {L"a", L"b"}},
        {{"a\0\0\0\0\0\0\0\0\0", 10}, {L"a", std::wstring()}}};
    for (const auto& [bytes, expected] : lists) {
        setRaw(L"list", REG_MULTI_SZ, bytes);
        EXPECT_EQ(key->getMultiStringValue(L"list"), expected) << testing::PrintToString(bytes);
    }
}

TEST_F(RegistryTest, tellsAbsenceFromFailure)
{
    constexpr unsigned long missing = ERROR_FILE_NOT_FOUND, denied = ERROR_ACCESS_DENIED;
    EXPECT_FALSE(key->doesKeyExist(L"none"));
    EXPECT_FALSE(key->doesValueExist(L"none"));
    EXPECT_EQ(codeOf([&] { key->openKey(L"none"); }), missing);
    EXPECT_EQ(codeOf([&] { key->getStringValue(L"none"); }), missing);
    EXPECT_EQ(codeOf([&] { key->deleteValue(L"none"); }), missing);
    EXPECT_EQ(codeOf([&] { key->deleteTree(L"none"); }), missing);
    EXPECT_EQ(codeOf([&] { registry->openKey(keyName)->setInt32Value(L"value", 2); }), denied);
    EXPECT_EQ(codeOf([&] { registry->openKey(keyName, KEY_NOTIFY)->doesValueExist(L"none"); }), denied);
    // A name above the system's limit is no mere absence.
    EXPECT_THROW(key->doesKeyExist(std::wstring(300, L'x')), Win32Exception);
}

TEST_F(RegistryTest, knowsRootsByTheirNamesAndDeletesNone)
{
    EXPECT_TRUE(registry->currentUser()->doesKeyExist(L"Software\\TarnhdRegistryTest"));
    for (const wchar_t* name : {L"HKEY_LOCAL_MACHINE", L"HKEY_CURRENT_USER\\"}) {
        EXPECT_EQ(reasonOf([&] { registry->deleteKey(name); }), L"Cannot delete root registry key");
        EXPECT_EQ(reasonOf([&] { registry->deleteTree(name); }), L"Cannot delete root registry key");
    }
    for (const wchar_t* name :
        {L"", L"HKLM\\x", L"hkey_local_machine\\x", L"HKEY_LOCAL_MACHIN", L"HKEY_LOCAL_MACHINES\\x", L" HKEY_USERS"})
        EXPECT_EQ(reasonOf([&] { registry->doesKeyExist(name); }),
            L"Root registry prefix is not found in the full registry key name.");
}

TEST_F(RegistryTest, reachesBothViews)
{
    if (!wow64::isWow64())
        GTEST_SKIP() << "this system has one view only";
    constexpr const wchar_t* name = L"HKEY_LOCAL_MACHINE\\Software\\TarnhdRegistryTest";
    registry->createKey(name, allAccess, 0, View::View64);
    EXPECT_FALSE(registry->doesKeyExist(name));
    EXPECT_NO_THROW(registry->openKey(name, readAccess, View::View64));
    registry->deleteKey(name, View::View64);
    EXPECT_FALSE(registry->doesKeyExist(name, View::View64));
}
