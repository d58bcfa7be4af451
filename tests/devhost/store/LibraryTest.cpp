#include "storefixture.h"

#include <atomic>
#include <filesystem>
#include <utility>

#include <windows.h>

using namespace devhost::store;

namespace {

using Notification = void (*)(const wchar_t*, int, const void*, void*);

std::wstring libraryPath()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).replace_filename(L"vx_qrl_meridia_32.dll").wstring();
}

struct LibraryTest : StoreTest {
    LibraryTest()
    {
        SetEnvironmentVariableW(L"TARNHD_INSTANCE", instance.c_str());
        module = LoadLibraryW(libraryPath().c_str());
    }
    ~LibraryTest() override
    {
        if (module)
            FreeLibrary(module);
    }

    template <typename Function>
    Function* bind(const char* name) const
    {
        void* address = reinterpret_cast<void*>(GetProcAddress(module, name));
        EXPECT_TRUE(address) << name;
        return reinterpret_cast<Function*>(address);
    }
    unsigned open()
    {
        return bind<unsigned(const wchar_t*, const wchar_t*, const wchar_t*, int*)>("QrlMeridia_OpenHandle")(
            L"safe", L"S-1-5-18", L"test", &error);
    }
    void close(unsigned handle) const { bind<void(unsigned)>("QrlMeridia_CloseHandle")(handle); }

    HMODULE module;
    int error = 0;
};

struct Told {
    Heard heard;
    std::atomic<int> type{-1};
};

void remember(const wchar_t* name, int type, const void* value, void* context)
{
    auto* told = static_cast<Told*>(context);
    told->type = value ? -2 : type;
    told->heard.add(std::string(name, name + std::wcslen(name)));
}

} // namespace

TEST_F(LibraryTest, readsAndWritesEachType)
{
    server.start();
    EXPECT_EQ(bind<int()>("QrlMeridia_DelayLoadInitialize")(), 0);
    EXPECT_EQ(bind<int(void*)>("VXDelayLoadDependencies")(nullptr), 0);
    const unsigned handle = open();
    ASSERT_NE(handle, 0U);
    EXPECT_EQ(error, 0);

    EXPECT_EQ(bind<int(unsigned, const wchar_t*, bool)>("QrlMeridia_SetBool")(handle, L"b", true), 0);
    EXPECT_EQ(bind<int(unsigned, const wchar_t*, int)>("QrlMeridia_SetInt32")(handle, L"i", -7), 0);
    EXPECT_EQ(bind<int(unsigned, const wchar_t*, std::int64_t)>("QrlMeridia_SetInt64")(handle, L"l", INT64_MAX), 0);
    EXPECT_EQ(bind<int(unsigned, const wchar_t*, const wchar_t*)>("QrlMeridia_SetString")(handle, L"s", L"\x0416"), 0);
    auto* setObject = bind<int(unsigned, const wchar_t*, const char*)>("QrlMeridia_SetObjectFromStringUtf8");
    EXPECT_EQ(setObject(handle, L"o", "{\"a\":1}"), 0);
    EXPECT_EQ(setObject(handle, L"o", "{"), 2);
    EXPECT_EQ(tool.get("s"), Value::fromString("\xD0\x96"));

    EXPECT_TRUE(bind<bool(unsigned, const wchar_t*, bool, int*)>("QrlMeridia_GetBool")(handle, L"b", false, &error));
    EXPECT_EQ(bind<int(unsigned, const wchar_t*, int, int*)>("QrlMeridia_GetInt32")(handle, L"i", 0, &error), -7);
    auto* getInt64 = bind<std::int64_t(unsigned, const wchar_t*, std::int64_t, int*)>("QrlMeridia_GetInt64");
    EXPECT_EQ(getInt64(handle, L"l", 0, &error), INT64_MAX);
    auto* freeString = bind<void(void*)>("QrlMeridia_FreeString");
    auto* getString = bind<wchar_t*(unsigned, const wchar_t*, const wchar_t*, int*)>("QrlMeridia_GetString");
    wchar_t* text = getString(handle, L"s", L"", &error);
    EXPECT_STREQ(text, L"\x0416");
    freeString(text);
    char* object =
        bind<char*(unsigned, const wchar_t*, int*)>("QrlMeridia_GetObjectAsStringUtf8")(handle, L"o", &error);
    EXPECT_STREQ(object, "{\"a\":1}");
    freeString(object);
    EXPECT_EQ(error, 0);
    close(handle);
}

TEST_F(LibraryTest, givesTheDefaultAndTheCodeOnAFailure)
{
    auto* getInt64 = bind<std::int64_t(unsigned, const wchar_t*, std::int64_t, int*)>("QrlMeridia_GetInt64");
    auto* getString = bind<wchar_t*(unsigned, const wchar_t*, const wchar_t*, int*)>("QrlMeridia_GetString");
    EXPECT_EQ(open(), 0U);
    EXPECT_EQ(error, 3);
    server.start();
    tool.set("s", Value::fromString("x"));
    const unsigned handle = open();
    EXPECT_EQ(error, 0);

    const struct {
        unsigned handle;
        const wchar_t* name;
        int code;
    } rows[] = {{handle, L"s", 11}, {handle, L"missing", 10}, {handle, L"", 2}, {handle, nullptr, 2},
        {handle, L"\xD800", 2}, {handle + 1, L"s", 2}, {0, L"s", 2}};
    for (const auto& row : rows) {
        error = 0;
        EXPECT_EQ(getInt64(row.handle, row.name, 1LL << 40, &error), 1LL << 40);
        EXPECT_EQ(error, row.code) << (row.name ? row.name : L"null");
    }
    server.stop();
    wchar_t* text = getString(handle, L"s", L"kept", &error);
    EXPECT_STREQ(text, L"kept");
    EXPECT_EQ(error, 3);
    bind<void(void*)>("QrlMeridia_FreeString")(text);
    server.start();
    EXPECT_EQ(bind<int(unsigned, const wchar_t*, const wchar_t*)>("QrlMeridia_SetString")(handle, L"s", L"y"), 0);
    close(handle);
    close(0);
}

TEST_F(LibraryTest, notifiesUntilUnsubscribedOrClosed)
{
    server.start();
    using Subscribe = int(unsigned, const wchar_t*, Notification, void*);
    auto* subscribe = bind<Subscribe>("QrlMeridia_Subscribe");
    auto* unsubscribe = bind<Subscribe>("QrlMeridia_Unsubscribe");
    Told first, second, closed;
    const unsigned handle = open();
    const unsigned other = open();
    EXPECT_EQ(subscribe(handle, L"a", nullptr, nullptr), 2);
    EXPECT_EQ(subscribe(handle, L"a", remember, &first), 0);
    EXPECT_EQ(subscribe(handle, L"a", remember, &second), 0);
    EXPECT_EQ(subscribe(other, L"a", remember, &closed), 0);
    EXPECT_EQ(unsubscribe(other, L"a", remember, &first), 10);
    tool.set("a", Value::fromInt64(1));
    ASSERT_TRUE(first.heard.await(1) && second.heard.await(1) && closed.heard.await(1));
    EXPECT_EQ(first.type, static_cast<int>(Type::Int64));

    close(other);
    EXPECT_EQ(unsubscribe(handle, L"a", remember, &first), 0);
    EXPECT_EQ(unsubscribe(handle, L"a", remember, &first), 10);
    tool.remove("a");
    ASSERT_TRUE(second.heard.await(2));
    EXPECT_EQ(second.type, 0);
    EXPECT_EQ(first.heard.count() + closed.heard.count(), 2U);
    close(handle);
}

TEST_F(LibraryTest, staysLoadedWhileAHandleIsOpen)
{
    server.start();
    const auto loaded = [] { return GetModuleHandleW(L"vx_qrl_meridia_32.dll") != nullptr; };
    auto* subscribe = bind<int(unsigned, const wchar_t*, Notification, void*)>("QrlMeridia_Subscribe");
    auto* closeHandle = bind<void(unsigned)>("QrlMeridia_CloseHandle");
    Told told;
    const unsigned handle = open();
    subscribe(handle, L"a", remember, &told);
    FreeLibrary(module);
    ASSERT_TRUE(loaded());
    tool.set("a", Value::fromInt32(1));
    EXPECT_TRUE(told.heard.await(1));

    module = LoadLibraryW(libraryPath().c_str());
    closeHandle(handle);
    FreeLibrary(std::exchange(module, nullptr));
    EXPECT_FALSE(loaded());
}

TEST_F(LibraryTest, aProcessEndsCalmlyWithAHandleLeftOpen)
{
    server.start();
    EXPECT_EQ(awaitChild(startChild(L"--leave \"" + libraryPath() + L"\"")), 7U);
}
