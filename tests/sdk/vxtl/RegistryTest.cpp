#include "vxtl/registry.h"
#include "support/thrown.h"
#include "vxtl/parsekeyname.h"
#include "vxtl/win32exception.h"
#include "vxtl/win32registrykey.h"
#include "vxtl/wow64.h"

#include <windows.h>

using namespace vx;
using namespace vx::registry;
using support::thrown;

namespace {

constexpr const wchar_t* keyName = L"HKEY_CURRENT_USER\\Software\\TarnhdRegistryTest";

template <typename Operation>
unsigned long codeOf(Operation operation)
{
    return thrown<Win32Exception>(operation).code();
}

template <typename Operation>
std::wstring reasonOf(Operation operation)
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

TEST_F(RegistryTest, keepsValuesOfEveryForm)
{
    const std::vector<std::uint8_t> bytes = {0, 1, 255};
    const std::vector<std::wstring> list = {L"one", std::wstring(), L"three"};
    key->setInt32Value(L"int32", -2);
    key->setInt64Value(L"int64", -0x123456789LL);
    key->setStringValue(L"text", L"caf\u00e9");
    key->setMultiStringValue(L"list", list);
    key->setBinaryValue(L"bytes", bytes);
    key->setBinaryValue(L"no bytes", {});
    const auto reader = registry->openKey(keyName);
    EXPECT_EQ(reader->getInt32Value(L"int32"), -2);
    EXPECT_EQ(reader->getInt64Value(L"int64"), -0x123456789LL);
    EXPECT_EQ(reader->getStringValue(L"text"), L"caf\u00e9");
    EXPECT_EQ(reader->getMultiStringValue(L"list"), list);
    EXPECT_EQ(reader->getBinaryValue(L"bytes"), bytes);
    EXPECT_TRUE(reader->getBinaryValue(L"no bytes").empty());
    EXPECT_THAT(reader->getValues(),
        testing::UnorderedElementsAre(L"bytes", L"int32", L"int64", L"list", L"no bytes", L"text"));
}

TEST_F(RegistryTest, refusesValuesOfAnotherTypeOrSize)
{
    setRaw(L"none", REG_NONE, "1234");
    EXPECT_EQ(reasonOf([&] { key->getInt32Value(L"none"); }), L"Invalid type of registry value: REG_DWORD is expected");
    EXPECT_EQ(reasonOf([&] { key->getInt64Value(L"none"); }), L"Invalid type of registry value: REG_DWORD is expected");
    EXPECT_EQ(reasonOf([&] { key->getStringValue(L"none"); }),
        L"Invalid type of registry value: REG_SZ or REG_EXPAND_SZ is expected");
    EXPECT_EQ(reasonOf([&] { key->getMultiStringValue(L"none"); }),
        L"Invalid type of registry value: REG_MULTI_SZ is expected");
    EXPECT_EQ(
        reasonOf([&] { key->getBinaryValue(L"none"); }), L"Invalid type of registry value: REG_BINARY is expected");
    setRaw(L"short", REG_DWORD, "123");
    setRaw(L"long", REG_QWORD, "123456789");
    EXPECT_EQ(reasonOf([&] { key->getInt32Value(L"short"); }),
        L"Invalid registry value size of REG_DWORD type: 4 bytes are expected, actual is 3");
    EXPECT_EQ(reasonOf([&] { key->getInt64Value(L"long"); }),
        L"Invalid registry value size of REG_QWORD type: 8 bytes are expected, actual is 9");
}

TEST_F(RegistryTest, readsTextAsOthersLeaveIt)
{
    struct {
        const char* trace;
        DWORD type;
        std::string bytes;
        const wchar_t* expected;
    } const rows[] = {
        {"no data", REG_SZ, "", L""},
        {"no terminator", REG_SZ, {"a\0b\0", 4}, L"ab"},
        {"text behind the NUL", REG_SZ, {"a\0\0\0b\0\0\0", 8}, L"a"},
        {"odd size", REG_SZ, {"a\0b", 3}, L"a"},
        {"variables stay", REG_EXPAND_SZ, {"%\0x\0%\0\0\0", 8}, L"%x%"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        setRaw(L"text", row.type, row.bytes);
        EXPECT_EQ(key->getStringValue(L"text"), row.expected);
    }
}

TEST_F(RegistryTest, readsListsAsOthersLeaveThem)
{
    struct {
        const char* trace;
        std::string bytes;
        std::vector<std::wstring> expected;
    } const rows[] = {
        {"no data", "", {}},
        {"one byte", "a", {}},
        {"one string", {"a\0\0\0\0\0", 6}, {L"a"}},
        {"one terminator", {"a\0\0\0", 4}, {L"a"}},
        {"no terminator", {"a\0b\0", 4}, {L"ab"}},
        {"odd size", {"a\0\0\0b", 5}, {L"a", L"b"}},
        {"empty one in the middle", {"a\0\0\0\0\0b\0\0\0\0\0", 12}, {L"a", std::wstring(), L"b"}},
        {"more empty ones at the end", {"a\0\0\0\0\0\0\0\0\0", 10}, {L"a", std::wstring()}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        setRaw(L"list", REG_MULTI_SZ, row.bytes);
        EXPECT_EQ(key->getMultiStringValue(L"list"), row.expected);
    }
    for (const auto& list : {std::vector<std::wstring>{}, std::vector<std::wstring>(1)}) {
        key->setMultiStringValue(L"list", list);
        EXPECT_TRUE(key->getMultiStringValue(L"list").empty());
    }
}

TEST_F(RegistryTest, makesListsAndDeletesKeys)
{
    EXPECT_TRUE(key->isCreated());
    EXPECT_FALSE(registry->createKey(keyName)->isCreated());
    EXPECT_TRUE(key->createKey(L"a\\below")->isCreated());
    key->createKey(L"a longer name");
    EXPECT_EQ(key->getKeys(), (std::vector<std::wstring>{L"a", L"a longer name"}));
    EXPECT_TRUE(key->doesKeyExist(L"a\\below"));
    EXPECT_EQ(codeOf([&] { key->deleteKey(L"a"); }), static_cast<unsigned long>(ERROR_ACCESS_DENIED));
    key->deleteTree(L"a");
    key->deleteKey(L"a longer name");
    EXPECT_TRUE(key->getKeys().empty());
}

TEST_F(RegistryTest, tellsAbsenceFromFailure)
{
    constexpr unsigned long missing = ERROR_FILE_NOT_FOUND;
    EXPECT_FALSE(key->doesKeyExist(L"none"));
    EXPECT_FALSE(key->doesValueExist(L"none"));
    key->setInt32Value(L"value", 1);
    EXPECT_TRUE(key->doesValueExist(L"value"));
    EXPECT_EQ(codeOf([&] { key->openKey(L"none"); }), missing);
    EXPECT_EQ(codeOf([&] { key->getStringValue(L"none"); }), missing);
    EXPECT_EQ(codeOf([&] { key->deleteValue(L"none"); }), missing);
    EXPECT_EQ(codeOf([&] { key->deleteKey(L"none"); }), missing);
    EXPECT_EQ(codeOf([&] { key->deleteTree(L"none"); }), missing);
    // A name above the system's limit is no mere absence.
    const std::wstring tooLong(300, L'x');
    EXPECT_NE(codeOf([&] { key->doesKeyExist(tooLong); }), 0u);
    const auto reader = registry->openKey(keyName);
    EXPECT_EQ(codeOf([&] { reader->setInt32Value(L"value", 2); }), static_cast<unsigned long>(ERROR_ACCESS_DENIED));
    const auto blind = registry->openKey(keyName, KEY_NOTIFY);
    EXPECT_EQ(codeOf([&] { blind->doesValueExist(L"none"); }), static_cast<unsigned long>(ERROR_ACCESS_DENIED));
}

TEST_F(RegistryTest, treatsRootsAsKeysThatCannotGo)
{
    EXPECT_TRUE(registry->doesKeyExist(L"HKEY_LOCAL_MACHINE"));
    EXPECT_TRUE(registry->openKey(L"HKEY_CURRENT_USER")->doesKeyExist(L"Software\\TarnhdRegistryTest"));
    EXPECT_TRUE(registry->currentUser()->doesKeyExist(L"Software\\TarnhdRegistryTest"));
    EXPECT_TRUE(registry->localMachine()->doesKeyExist(L"Software"));
    for (const wchar_t* name : {L"HKEY_LOCAL_MACHINE", L"HKEY_CURRENT_USER\\"}) {
        EXPECT_EQ(reasonOf([&] { registry->deleteKey(name); }), L"Cannot delete root registry key");
        EXPECT_EQ(reasonOf([&] { registry->deleteTree(name); }), L"Cannot delete root registry key");
    }
    EXPECT_EQ(reasonOf([] { registry::details::Win32RegistryKey none(nullptr); }), L"Null registry key value");
}

TEST_F(RegistryTest, reachesBothViews)
{
    if (!wow64::isWow64())
        GTEST_SKIP() << "this system has one view only";
    constexpr const wchar_t* name = L"HKEY_LOCAL_MACHINE\\Software\\TarnhdRegistryTest";
    const auto clear = [&] {
        for (const View view : {View::View32, View::View64})
            if (registry->doesKeyExist(name, view))
                registry->deleteKey(name, view);
    };
    clear();
    registry->createKey(name, allAccess, 0, View::View32)->setInt32Value(L"view", 32);
    registry->createKey(name, allAccess, 0, View::View64)->setInt32Value(L"view", 64);
    EXPECT_EQ(registry->openKey(name, readAccess, View::View32)->getInt32Value(L"view"), 32);
    EXPECT_EQ(registry->openKey(name, readAccess, View::View64)->getInt32Value(L"view"), 64);
    EXPECT_EQ(registry->openKey(name)->getInt32Value(L"view"), 32);
    clear();
    EXPECT_FALSE(registry->doesKeyExist(name, View::View32));
    EXPECT_FALSE(registry->doesKeyExist(name, View::View64));
}
