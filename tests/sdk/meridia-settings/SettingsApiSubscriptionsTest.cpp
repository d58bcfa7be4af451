#include "fakemeridia.h"
#include "support/logcapture.h"
#include "support/thrown.h"

using namespace vx;
using support::thrown;
using testing::ElementsAre;

namespace {

struct SettingsApiSubscriptionsTest : testing::Test {
    settings::SubscriptionId subscribe(const wchar_t* name)
    {
        return api->subscribeForChanges(name, [this](const std::wstring& changed) { changes.push_back(changed); });
    }

    FakeMeridia fake;
    std::unique_ptr<meridia::SettingsApi> api = fake.open();
    std::vector<std::wstring> changes;
    support::LogCapture log;
};

} // namespace

TEST_F(SettingsApiSubscriptionsTest, subscriptionsUseTheSecondHandleAndTheirRecord)
{
    const auto id = subscribe(L"n");
    EXPECT_EQ(id, reinterpret_cast<settings::SubscriptionId>(fake.userData));
    fake.notify(L"n");
    fake.notify(nullptr);
    EXPECT_THAT(changes, ElementsAre(L"n", std::wstring()));
    api->unsubscribeFromChanges(id);
    api->unsubscribeFromChanges(id);
    EXPECT_THAT(fake.calls, ElementsAre(L"Subscribe 2 n", L"Unsubscribe 2 n"));
}

TEST_F(SettingsApiSubscriptionsTest, refusedSubscriptionIsGoneAndCalledTwice)
{
    for (int code = 1; code <= 25; ++code) {
        fake.calls.clear();
        fake.answer({code, 12});
        const auto failure = thrown<QrlMeridiaException>([&] { subscribe(L"n"); });
        EXPECT_EQ(code, static_cast<int>(failure.code()));
        EXPECT_EQ(L"Operation is not allowed, Setting: n", failure.reason());
        api->unsubscribeFromChanges(reinterpret_cast<settings::SubscriptionId>(fake.userData));
        EXPECT_EQ(2u, fake.calls.size());
    }
}

TEST_F(SettingsApiSubscriptionsTest, refusedUnsubscriptionStaysUsableUntilTheOwnerIsGone)
{
    subscribe(L"a");
    const auto id = subscribe(L"b");
    fake.answer({3, 5});
    const auto failure = thrown<QrlMeridiaException>([&] { api->unsubscribeFromChanges(id); });
    EXPECT_EQ(meridia::QrlMeridiaError_enum::ServerUnreachable, failure.code());
    EXPECT_EQ(L"Access denied", failure.reason());
    fake.notify(L"b");
    EXPECT_THAT(changes, ElementsAre(L"b"));
    fake.answer({0});
    api->unsubscribeFromChanges(id);
    EXPECT_THAT(fake.calls,
        ElementsAre(L"Subscribe 2 a", L"Subscribe 2 b", L"Unsubscribe 2 b", L"Unsubscribe 2 b", L"Unsubscribe 2 b"));
    subscribe(L"left");
    api.reset();
    fake.notify(L"left");
    EXPECT_THAT(changes, ElementsAre(L"b"));
}

TEST_F(SettingsApiSubscriptionsTest, subscriberThatThrowsIsLogged)
{
    api->subscribeForChanges(L"n", [](const std::wstring&) { throw std::runtime_error("broken subscriber"); });
    fake.notify(L"n");
    EXPECT_TRUE(log.has(2, "broken subscriber"));
    api->subscribeForChanges(L"n", [](const std::wstring&) { throw 1; });
    EXPECT_NO_THROW(fake.notify(L"n"));
}

TEST_F(SettingsApiSubscriptionsTest, notificationWithoutARecordIsLogged)
{
    subscribe(L"n");
    fake.notification(nullptr, 3, nullptr, nullptr);
    EXPECT_TRUE(log.has(5, "settingName: , type: 3, value: 0"));
    EXPECT_TRUE(log.has(3, "vx::meridia::SettingsApi::settingsChangeNotificationCallback: userData is not provided"));
    EXPECT_TRUE(changes.empty());
}
