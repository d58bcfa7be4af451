#include "settings-api/cachedsettings.h"
#include "support/fakesettings.h"
#include "support/gate.h"

#include <atomic>
#include <thread>

using namespace vx::settings;
using support::FakeSettings;

namespace {

/// Once armed, stops in the next int32 write or int64 read until it is let go.
struct GatedStore : FakeSettings {
    void setInt32Value(Name name, std::int32_t value) override
    {
        passGate();
        FakeSettings::setInt32Value(name, value);
    }
    std::int64_t getInt64Value(Name name) override
    {
        const std::int64_t value = FakeSettings::getInt64Value(name);
        passGate();
        return value;
    }
    void passGate()
    {
        if (isArmed.exchange(false))
            gate.pass();
    }

    /// Starts the call in a thread of its own and returns when it stands at the gate.
    void hold(std::function<void()> call)
    {
        isArmed = true;
        held = std::async(std::launch::async, std::move(call));
        gate.waitUntilEntered();
    }
    void letGo()
    {
        gate.open();
        held.get();
    }

    std::atomic<bool> isArmed{false};
    support::Gate gate;
    std::future<void> held;
};

struct CachedSettingsThreadsTest : testing::Test {
    std::shared_ptr<GatedStore> store = std::make_shared<GatedStore>();
    CachedSettings cached{store};
};

} // namespace

TEST_F(CachedSettingsThreadsTest, slowProviderHoldsUpNoOtherCaller)
{
    store->hold([&] { cached.setInt32Value(L"n", 1); });
    store->breakDown(L"failed");
    cached.setInt32Value(L"failed", 4);
    store->repair(L"failed");
    cached.setInt32Value(L"other", 5);
    EXPECT_EQ(5, cached.getInt32Value(L"other"));
    EXPECT_THAT(store->writes(), testing::ElementsAre(L"other", L"failed")); // not what is under way already
    store->letGo();
}

TEST_F(CachedSettingsThreadsTest, saveOvertakenByAWriteEndsWithTheLaterValue)
{
    store->breakDown();
    cached.setInt32Value(L"n", 1);
    store->repair();
    store->hold([&] { cached.setBoolValue(L"trigger", true); });
    cached.setInt32Value(L"n", 2);
    store->letGo();
    EXPECT_EQ(2, store->getInt32Value(L"n"));
}

TEST_F(CachedSettingsThreadsTest, finishedWriteDoesNotMarkALaterFailedOneSaved)
{
    store->hold([&] { cached.setInt32Value(L"n", 1); });
    store->breakDown(L"n");
    cached.setInt32Value(L"n", 2);
    store->repair(L"n");
    store->letGo();
    EXPECT_EQ(2, store->getInt32Value(L"n"));
}

TEST_F(CachedSettingsThreadsTest, readDoesNotDropAWriteThatFailedMeanwhile)
{
    store->setInt64Value(L"slow", 10);
    store->hold([&] { EXPECT_EQ(10, cached.getInt64Value(L"slow")); });
    store->breakDown(L"slow");
    cached.setInt64Value(L"slow", 20);
    store->letGo();
    EXPECT_EQ(20, cached.getInt64Value(L"slow"));
    store->repair(L"slow");
    cached.setBoolValue(L"trigger", true);
    EXPECT_EQ(20, store->getInt64Value(L"slow"));
}

TEST_F(CachedSettingsThreadsTest, readBesideAWalkDoesNotDropWhatTheWalkHasNotReached)
{
    store->setInt32Value(L"z", 10);
    store->breakDown();
    cached.setInt32Value(L"a", 1);
    cached.setInt32Value(L"z", 20);
    store->repair();
    store->hold([&] { cached.setBoolValue(L"trigger", true); });
    EXPECT_EQ(10, cached.getInt32Value(L"z"));
    store->letGo();
    EXPECT_EQ(20, store->getInt32Value(L"z"));
}

TEST_F(CachedSettingsThreadsTest, noWriteIsLostUnderAFlappingStore)
{
    constexpr int rounds = 300;
    store->setBoolValue(L"read", true);
    cached.getBoolValue(L"read");
    std::vector<std::jthread> writers;
    for (const std::wstring name : {L"a", L"b", L"c"})
        writers.emplace_back([&, name] {
            for (int i = 1; i <= rounds; ++i) {
                cached.setInt32Value(name, i);
                cached.setInt32Value(L"shared", i);
            }
        });
    std::jthread reader([&](std::stop_token stop) {
        while (!stop.stop_requested())
            cached.getBoolValue(L"read");
    });
    for (int i = 0; i < rounds; ++i)
        i % 2 ? store->repair() : store->breakDown();
    writers.clear();
    reader = {};
    store->repair();
    cached.getBoolValue(L"read");
    for (const wchar_t* name : {L"a", L"b", L"c"})
        EXPECT_EQ(rounds, store->getInt32Value(name));
}
