#include "changesubscription.h"
#include "fakemeridia.h"
#include "support/gate.h"
#include "support/logcapture.h"
#include "support/record.h"

using namespace vx;
using testing::ElementsAre;

namespace {

struct SettingsApiSubscriptionsTest : MeridiaTest {
    settings::SubscriptionId subscribe(const wchar_t* name)
    {
        return api->subscribeForChanges(name, [this](const std::wstring& changed) { changes.push_back(changed); });
    }

    /// Whether the latest record is in memory.
    bool isThere() const { return meridia::ChangeSubscription::find(userData) != nullptr; }

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
    api->unsubscribeFromChanges(id);
    api->unsubscribeFromChanges(id);
    EXPECT_THAT(calls, ElementsAre(L"Subscribe 2 n", L"Unsubscribe 2 n"));
}

TEST_F(SettingsApiSubscriptionsTest, refusedSubscriptionIsCalledTwiceAndCancelsWhatTheSecondCallBrought)
{
    const std::wstring twice[] = {L"Subscribe 2 n", L"Subscribe 2 n", L"Unsubscribe 2 n"};
    const struct {
        std::deque<int> answers;
        std::wstring reason;
        std::size_t calls;
        bool staysThere;
    } rows[] = {{{3, 12}, L"Operation is not allowed", 2, false},
        {{3, 0, 0}, L"Operation completed successfully", 3, false},
        {{3, 0, 5}, L"Operation completed successfully", 3, true}};
    notifiesAtOnce = true;
    for (const auto& [answers, reason, callsMade, staysThere] : rows) {
        codes = answers;
        calls.clear();
        EXPECT_EQ(Failure(3, reason + L", Setting: n"), failureOf([&] { subscribe(L"n"); }));
        EXPECT_EQ(calls, std::vector(twice, twice + callsMade));
        EXPECT_EQ(isThere(), staysThere);
        notify(L"n");
        api->unsubscribeFromChanges(reinterpret_cast<settings::SubscriptionId>(userData));
        EXPECT_EQ(calls.size(), callsMade);
        EXPECT_THAT(changes, ElementsAre());
    }
}

TEST_F(SettingsApiSubscriptionsTest, leavesNothingToALibraryThatForgotAtTheSecondCallForARefusalsText)
{
    const auto id = subscribe(L"n");
    codes = {3, 0, 10};
    EXPECT_EQ(Failure(3, L"Operation completed successfully"), failureOf([&] { api->unsubscribeFromChanges(id); }));
    EXPECT_EQ(Failure(10, L"Setting not found"), failureOf([&] { api->unsubscribeFromChanges(id); })) << "still listed";
    EXPECT_TRUE(isThere());
    api.reset();
    EXPECT_FALSE(isThere());
}

TEST_F(SettingsApiSubscriptionsTest, anUnsubscriptionWaitsForADeliveryInFlight)
{
    support::Gate gate;
    bool delivered = false;
    const auto id = api->subscribeForChanges(L"n", [&](const std::wstring&) {
        gate.pass();
        delivered = true;
    });
    const auto notifier = std::async(std::launch::async, [this] { notify(L"n"); });
    gate.waitUntilEntered();
    auto seen = std::async(std::launch::async, [&] {
        api->unsubscribeFromChanges(id);
        return delivered;
    });
    EXPECT_TRUE(log.waitFor("subscriptionId: "));
    EXPECT_EQ(seen.wait_for(support::moment), std::future_status::timeout);
    gate.open();
    EXPECT_TRUE(seen.get());
}

TEST_F(SettingsApiSubscriptionsTest, aDeliveryMayEndItsSubscription)
{
    settings::SubscriptionId id = 0;
    id = api->subscribeForChanges(L"n", [&, held = std::wstring(100, 'x')](const std::wstring&) {
        api->unsubscribeFromChanges(id);
        changes.push_back(held);
    });
    notify(L"n");
    notify(L"n");
    EXPECT_EQ(changes.size(), 1u);
    EXPECT_FALSE(isThere());
}

TEST_F(SettingsApiSubscriptionsTest, refusedUnsubscriptionStaysUsableUntilTheOwnerIsGone)
{
    subscribe(L"a");
    const auto id = subscribe(L"b");
    codes = {3, 5};
    EXPECT_EQ(Failure(3, L"Access denied"), failureOf([&] { api->unsubscribeFromChanges(id); }));
    notify(L"b");
    codes = {0};
    api->unsubscribeFromChanges(id);
    EXPECT_THAT(calls,
        ElementsAre(L"Subscribe 2 a", L"Subscribe 2 b", L"Unsubscribe 2 b", L"Unsubscribe 2 b", L"Unsubscribe 2 b"));
    subscribe(L"left");
    api.reset();
    notify(L"left");
    EXPECT_THAT(changes, ElementsAre(L"b"));
    EXPECT_TRUE(isThere()) << "no later record gets the address that the library knows";
}

TEST_F(SettingsApiSubscriptionsTest, subscriberThatThrowsIsLogged)
{
    api->subscribeForChanges(L"n", [](const std::wstring&) { throw std::runtime_error("broken subscriber"); });
    notify(L"n");
    EXPECT_TRUE(log.has(2, "broken subscriber"));
    api->subscribeForChanges(L"n", [](const std::wstring&) { throw 1; });
    EXPECT_NO_THROW(notify(L"n"));
}
