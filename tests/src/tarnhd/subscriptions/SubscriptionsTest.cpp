#include "tarnhd/subscriptions.h"

#include "support/fakesettings.h"
#include "support/logcapture.h"

#include <stdexcept>

namespace vx::tarn {
namespace {

/// Refuses what it is told to.
struct StubbornStore : support::FakeSettings {
    settings::SubscriptionId subscribeForChanges(
        const std::wstring& name, const settings::ChangeCallback& callback) override
    {
        if (name == refused)
            throw std::runtime_error("no subscription");
        return FakeSettings::subscribeForChanges(name, callback);
    }
    void unsubscribeFromChanges(settings::SubscriptionId id) override
    {
        if (id == kept)
            throw std::runtime_error("no way back");
        FakeSettings::unsubscribeFromChanges(id);
    }

    std::wstring refused;
    settings::SubscriptionId kept = -1;
};

TEST(Subscriptions, outliveWhatTheStoreRefuses)
{
    support::LogCapture log;
    const auto store = std::make_shared<StubbornStore>();
    const auto settings = support::FakeSettings::handle(store);
    std::vector<std::wstring> changes;
    {
        Subscriptions subscriptions(settings.get());
        const auto subscribe = [&](const std::wstring& name) {
            return subscriptions.subscribe(name, [&](const std::wstring& changed) { changes.push_back(changed); });
        };
        store->refused = L"dead";
        EXPECT_EQ(subscribe(L"dead"), -1);
        EXPECT_TRUE(log.has(2, "Failed to subscribe to a property dead. Reason: no subscription")) << log.text();
        subscribe(L"one");
        EXPECT_TRUE(subscriptions.unsubscribe(subscribe(L"two")));
        store->notify(L"one");
        store->notify(L"two");
        EXPECT_EQ(changes, std::vector<std::wstring>{L"one"});

        store->kept = subscribe(L"kept");
        subscribe(L"other");
        subscriptions.unsubscribeAll();
        EXPECT_EQ(store->subscriptions(), 1u);
        EXPECT_TRUE(log.has(2, "Failed to unsubscribe from property: kept. Reason: no way back")) << log.text();
        EXPECT_EQ(log.count("Failed to unsubscribe from property: "), 2u) << log.text();
        store->kept = -1;
    }
    EXPECT_EQ(store->subscriptions(), 0u) << "tried again at the end";
}

} // namespace
} // namespace vx::tarn
