#include "fakemeridia.h"
#include "support/logcapture.h"

using namespace vx;
using testing::ElementsAre;

namespace {

struct SettingsApiSubscriptionsTest : MeridiaTest {
    settings::SubscriptionId subscribe(const wchar_t* name)
    {
        return api->subscribeForChanges(name, [this](const std::wstring& changed) { changes.push_back(changed); });
    }

    std::vector<std::wstring> changes;
    support::LogCapture log;
};

} // namespace

TEST_F(SettingsApiSubscriptionsTest, subscriptionsUseTheSecondHandleAndTheirRecord)
{
    const auto id = subscribe(L"n");
    EXPECT_EQ(id, reinterpret_cast<settings::SubscriptionId>(userData));
    notify(L"n");
    notify(nullptr);
    notification(nullptr, 3, nullptr, nullptr); // without a record
    EXPECT_THAT(changes, ElementsAre(L"n", std::wstring()));
    EXPECT_TRUE(log.has(3, "vx::meridia::SettingsApi::settingsChangeNotificationCallback: userData is not provided"));
    api->unsubscribeFromChanges(id);
    api->unsubscribeFromChanges(id);
    EXPECT_THAT(calls, ElementsAre(L"Subscribe 2 n", L"Unsubscribe 2 n"));
}

TEST_F(SettingsApiSubscriptionsTest, refusedSubscriptionIsGoneAndCalledTwice)
{
    answer({3, 12});
    EXPECT_EQ(Failure(3, L"Operation is not allowed, Setting: n"), failureOf([&] { subscribe(L"n"); }));
    api->unsubscribeFromChanges(reinterpret_cast<settings::SubscriptionId>(userData));
    EXPECT_EQ(2u, calls.size());
}

TEST_F(SettingsApiSubscriptionsTest, refusedUnsubscriptionStaysUsableUntilTheOwnerIsGone)
{
    subscribe(L"a");
    const auto id = subscribe(L"b");
    answer({3, 5});
    EXPECT_EQ(Failure(3, L"Access denied"), failureOf([&] { api->unsubscribeFromChanges(id); }));
    notify(L"b");
    answer({0});
    api->unsubscribeFromChanges(id);
    EXPECT_THAT(calls,
        ElementsAre(L"Subscribe 2 a", L"Subscribe 2 b", L"Unsubscribe 2 b", L"Unsubscribe 2 b", L"Unsubscribe 2 b"));
    subscribe(L"left");
    api.reset();
    notify(L"left");
    EXPECT_THAT(changes, ElementsAre(L"b"));
}

TEST_F(SettingsApiSubscriptionsTest, subscriberThatThrowsIsLogged)
{
    api->subscribeForChanges(L"n", [](const std::wstring&) { throw std::runtime_error("broken subscriber"); });
    notify(L"n");
    EXPECT_TRUE(log.has(2, "broken subscriber"));
    api->subscribeForChanges(L"n", [](const std::wstring&) { throw 1; });
    EXPECT_NO_THROW(notify(L"n"));
}
