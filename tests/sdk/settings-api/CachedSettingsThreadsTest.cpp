#include "settings-api/cachedsettings.h"
#include "support/fakesettings.h"

#include <atomic>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

using namespace vx::settings;
using support::FakeSettings;

namespace {

/// Once armed, stops in the first write of the value 1 or read of "slow" until it is let go.
class GatedStore : public FakeSettings {
public:
    void setInt32Value(const std::wstring& name, std::int32_t value) override
    {
        if (value == 1)
            passGate();
        FakeSettings::setInt32Value(name, value);
    }
    std::int64_t getInt64Value(const std::wstring& name) override
    {
        const std::int64_t value = FakeSettings::getInt64Value(name);
        if (name == L"slow")
            passGate();
        return value;
    }

    void arm() { m_isArmed = true; }
    void awaitArrival() { m_arrived.get_future().wait(); }
    void letGo() { m_open.set_value(); }

private:
    void passGate()
    {
        if (!m_isArmed.exchange(false))
            return;
        m_arrived.set_value();
        m_open.get_future().wait();
    }

    std::atomic<bool> m_isArmed{false};
    std::promise<void> m_arrived;
    std::promise<void> m_open;
};

class CachedSettingsThreadsTest : public testing::Test {
protected:
    void breakStore(const std::wstring& name = {})
    {
        m_store->fail(name, std::make_exception_ptr(std::runtime_error("store is down")));
    }
    void repairStore(const std::wstring& name = {}) { m_store->fail(name, nullptr); }

    std::shared_ptr<GatedStore> m_store = std::make_shared<GatedStore>();
    CachedSettings m_cached{m_store};
};

} // namespace

TEST_F(CachedSettingsThreadsTest, slowProviderHoldsUpNoOtherCaller)
{
    m_store->arm();
    std::thread slow([&] { m_cached.setInt32Value(L"n", 1); });
    m_store->awaitArrival();
    breakStore(L"failed");
    m_cached.setInt32Value(L"failed", 4);
    repairStore(L"failed");
    m_cached.setInt32Value(L"other", 5);
    EXPECT_EQ(5, m_cached.getInt32Value(L"other"));
    EXPECT_THAT(m_store->writes(), testing::ElementsAre(L"other", L"failed")); // not what is under way already
    m_store->letGo();
    slow.join();
}

TEST_F(CachedSettingsThreadsTest, saveOvertakenByAWriteEndsWithTheLaterValue)
{
    breakStore();
    m_cached.setInt32Value(L"n", 1);
    repairStore();
    m_store->arm();
    std::thread saver([&] { m_cached.setBoolValue(L"trigger", true); });
    m_store->awaitArrival();
    m_cached.setInt32Value(L"n", 2);
    m_store->letGo();
    saver.join();
    EXPECT_EQ(2, m_store->getInt32Value(L"n"));
}

TEST_F(CachedSettingsThreadsTest, finishedWriteDoesNotMarkALaterFailedOneSaved)
{
    m_store->arm();
    std::thread first([&] { m_cached.setInt32Value(L"n", 1); });
    m_store->awaitArrival();
    breakStore(L"n");
    m_cached.setInt32Value(L"n", 2);
    repairStore(L"n");
    m_store->letGo();
    first.join();
    EXPECT_EQ(2, m_store->getInt32Value(L"n"));
}

TEST_F(CachedSettingsThreadsTest, readDoesNotDropAWriteThatFailedMeanwhile)
{
    m_store->setInt64Value(L"slow", 10);
    m_store->arm();
    std::thread reader([&] { EXPECT_EQ(10, m_cached.getInt64Value(L"slow")); });
    m_store->awaitArrival();
    breakStore(L"slow");
    m_cached.setInt64Value(L"slow", 20);
    m_store->letGo();
    reader.join();
    EXPECT_EQ(20, m_cached.getInt64Value(L"slow"));
    repairStore(L"slow");
    m_cached.setBoolValue(L"trigger", true);
    EXPECT_EQ(20, m_store->getInt64Value(L"slow"));
}

TEST_F(CachedSettingsThreadsTest, readBesideAWalkDoesNotDropWhatTheWalkHasNotReached)
{
    m_store->setInt32Value(L"z", 10);
    breakStore();
    m_cached.setInt32Value(L"a", 1);
    m_cached.setInt32Value(L"z", 20);
    repairStore();
    m_store->arm();
    std::thread walker([&] { m_cached.setBoolValue(L"trigger", true); });
    m_store->awaitArrival();
    EXPECT_EQ(10, m_cached.getInt32Value(L"z"));
    m_store->letGo();
    walker.join();
    EXPECT_EQ(20, m_store->getInt32Value(L"z"));
}

TEST_F(CachedSettingsThreadsTest, noWriteIsLostUnderAFlappingStore)
{
    constexpr int rounds = 300;
    const auto store = std::make_shared<FakeSettings>();
    store->setBoolValue(L"read", true);
    CachedSettings cached(store);
    cached.getBoolValue(L"read");
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    for (const std::wstring name : {L"a", L"b", L"c"})
        threads.emplace_back([&, name] {
            for (int i = 1; i <= rounds; ++i) {
                cached.setInt32Value(name, i);
                cached.setInt32Value(L"shared", i);
            }
        });
    std::thread reader([&] {
        while (!done)
            cached.getBoolValue(L"read");
    });
    const auto down = std::make_exception_ptr(std::runtime_error("store is down"));
    for (int i = 0; i < rounds; ++i)
        store->fail({}, i % 2 ? nullptr : down);
    for (auto& thread : threads)
        thread.join();
    done = true;
    reader.join();
    store->fail({}, nullptr);
    cached.getBoolValue(L"read");
    for (const wchar_t* name : {L"a", L"b", L"c"})
        EXPECT_EQ(rounds, store->getInt32Value(name));
}
