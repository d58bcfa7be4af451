#include "tarnhd/subscriptions/subscriptions.h"

#include "support/fakesettings.h"
#include "support/gate.h"
#include "support/logcapture.h"
#include "support/record.h"

namespace vx::tarn {
namespace {

constexpr auto refused = "Failed to unsubscribe from property: key";

struct SubscriptionsTest : testing::Test {
    /// The end comes while the store is away, so it can cancel nothing.
    void endDuringOutage()
    {
        store->breakDown();
        subscriptions.reset();
        store->repair();
    }

    support::LogCapture log;
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    std::shared_ptr<settings::Settings> settings = support::FakeSettings::handle(store);
    std::optional<Subscriptions> subscriptions{settings.get()};
    int calls = 0;
};

TEST_F(SubscriptionsTest, nothingIsCalledAfterTheEndWhateverTheStoreKeeps)
{
    subscriptions->subscribe(L"key", [this](const std::wstring&) { ++calls; });
    store->breakDown();
    subscriptions->unsubscribeAll();
    EXPECT_EQ(log.count(refused), 2u) << log.text();
    store->repair();
    store->notify(L"key");
    EXPECT_EQ(calls, 1) << "a refused unsubscription ends nothing before that";
    endDuringOutage();
    EXPECT_EQ(store->subscriptions(), 1u);
    store->notify(L"key");
    EXPECT_EQ(calls, 1);
}

TEST_F(SubscriptionsTest, keepsNothingOfARefusedSubscriptionSoThatItMayBeTriedForEver)
{
    const auto held = std::make_shared<int>(1);
    store->breakDown(L"key");
    EXPECT_EQ(subscriptions->subscribe(L"key", [held](const std::wstring&) {}), -1);
    EXPECT_EQ(held.use_count(), 1);
    store->repair(L"key");
    subscriptions->subscribe(L"key", [this, held](const std::wstring&) { calls += *held; });
    store->notify(L"key");
    EXPECT_EQ(calls, 1);
}

TEST_F(SubscriptionsTest, theEndWaitsForACallInFlight)
{
    support::Gate gate;
    subscriptions->subscribe(L"key", [&](const std::wstring&) {
        gate.pass();
        ++calls;
    });
    const auto notifier = std::async(std::launch::async, [this] { store->notify(L"key"); });
    gate.waitUntilEntered();
    auto seen = std::async(std::launch::async, [&] {
        endDuringOutage();
        return calls;
    });
    EXPECT_TRUE(log.waitFor(refused, 2)) << log.text();
    EXPECT_EQ(seen.wait_for(support::moment), std::future_status::timeout);
    gate.open();
    EXPECT_EQ(seen.get(), 1);
}

TEST_F(SubscriptionsTest, theEndMayComeFromACall)
{
    subscriptions->subscribe(L"key", [this, held = std::make_shared<int>(1)](const std::wstring&) {
        endDuringOutage();
        calls += *held;
    });
    store->notify(L"key");
    store->notify(L"key");
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace vx::tarn
