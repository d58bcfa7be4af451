// The client library as the product binds it.

#include "meridia-settings/qrlmeridiaapi.h"
#include "stage.h"

using namespace devhost::store;
using enum vx::meridia::QrlMeridiaError_enum;

namespace {

struct Library : vx::meridia::QrlMeridiaApi {
    Library() { EXPECT_EQ(vx::meridia::loadQrlMeridiaApi(*this), vx::delayload::LoadStatus::Success); }
    unsigned open() { return openHandle(L"safe", L"S-1-5-18", L"test", &error); }

    Error error = Success;
};

struct LibraryTest : support::StageTest {
    Library api;
};

void VX_CDECL remember(const wchar_t* name, std::int32_t type, const void* value, void* record)
{
    const std::string narrowName(name, name + std::wcslen(name));
    static_cast<support::Record*>(record)->add(narrowName + " " + std::to_string(type) + (value ? " value" : ""));
}

} // namespace

TEST_F(LibraryTest, givesTheDefaultAndTheCodeOnAFailure)
{
    EXPECT_EQ(api.open(), 0U);
    EXPECT_EQ(api.error, ServerUnreachable);
    server.start();
    client.set("s", Value::fromString("x"));
    const unsigned handle = api.open();
    const struct {
        unsigned handle;
        const wchar_t* name;
        vx::meridia::QrlMeridiaError_enum code;
    } rows[] = {
        {handle, L"s", InvalidSettingType},
        {handle, L"missing", SettingNotFound},
        {handle, nullptr, InvalidParameter},
        {handle, L"\xD800", InvalidParameter},
        {handle + 1, L"s", InvalidParameter},
    };
    for (const auto& row : rows) {
        api.error = Success;
        EXPECT_EQ(api.getInt64(row.handle, row.name, 1LL << 40, &api.error), 1LL << 40);
        EXPECT_EQ(api.error, row.code) << (row.name ? row.name : L"null");
    }
    api.closeHandle(handle);
    api.closeHandle(0);
}

TEST_F(LibraryTest, notifiesUntilUnsubscribedOrClosed)
{
    server.start();
    support::Record first, second, closed;
    const unsigned handle = api.open();
    const unsigned other = api.open();
    EXPECT_EQ(api.subscribe(handle, L"a", nullptr, nullptr), InvalidParameter);
    EXPECT_EQ(api.subscribe(handle, L"a", remember, &first), Success);
    EXPECT_EQ(api.subscribe(other, L"a", remember, &closed), Success);
    EXPECT_EQ(api.subscribe(handle, L"a", remember, &second), Success); // the last one that is told
    EXPECT_EQ(api.unsubscribe(other, L"a", remember, &first), SettingNotFound);
    client.set("a", Value::fromInt64(1));
    for (support::Record* record : {&first, &second, &closed})
        EXPECT_EQ(record->waitFor(1), std::vector<std::string>{"a 3"});

    api.closeHandle(other);
    EXPECT_EQ(api.unsubscribe(handle, L"a", remember, &first), Success);
    EXPECT_EQ(api.unsubscribe(handle, L"a", remember, &first), SettingNotFound);
    client.remove("a");
    EXPECT_EQ(second.waitFor(2).back(), "a 0");
    EXPECT_EQ(first.size() + closed.size(), 2U);
    api.closeHandle(handle);
}
