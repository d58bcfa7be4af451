#include "settings-api/cachedsettings.h"

#include "settings-api/exceptions.h"
#include "support/fakesettings.h"
#include "support/gate.h"
#include "support/logcapture.h"
#include "support/thrown.h"

#include <atomic>
#include <functional>
#include <thread>

using namespace vx::settings;
using nlohmann::json;
using support::FakeSettings;
using support::thrown;
using testing::ElementsAre;

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

struct CachedSettingsTest : testing::Test {
    std::shared_ptr<GatedStore> store = std::make_shared<GatedStore>();
    CachedSettings cached{store};
    support::LogCapture log;
};

void expectValues(details::SettingsImpl& settings)
{
    EXPECT_TRUE(settings.getBoolValue(L"bool"));
    EXPECT_EQ(INT32_MIN, settings.getInt32Value(L"int32"));
    EXPECT_EQ(INT64_MIN, settings.getInt64Value(L"int64"));
    EXPECT_EQ(0.1, settings.getDoubleValue(L"double"));
    EXPECT_EQ(L"\u20ac \u00df", settings.getStringValue(L"name"));
    EXPECT_EQ(json::array({1, "a"}), settings.getJsonValue(L"json"));
}

} // namespace

TEST_F(CachedSettingsTest, outageAnswersWithWrittenValuesAndRecoverySavesThem)
{
    store->breakDown();
    const auto read = [&] { cached.getBoolValue(L"bool"); };
    EXPECT_EQ(L"Cached value doesn't exist", thrown<NotFoundException>(read).setting()) << "not the name";
    cached.setBoolValue(L"bool", true);
    cached.setInt32Value(L"int32", INT32_MIN);
    cached.setInt64Value(L"int64", INT64_MIN);
    cached.setDoubleValue(L"double", 0.1);
    cached.setStringValue(L"name", L"\u20ac \u00df");
    cached.setJsonValue(L"json", json::array({1, "a"}));
    expectValues(cached);
    store->repair();
    cached.setBoolValue(L"other", true);
    expectValues(*store);
    EXPECT_TRUE(log.has(3, "Failed to set int32 value: int32. Exception caught: store is down"));
    EXPECT_TRUE(
        log.has(3, "Failed to read a std::int32_t value: int32. Exception caught: store is down. Will be used a "
                   "cached value"));
    EXPECT_EQ(6u, log.count(" successfully saved"));
}

TEST_F(CachedSettingsTest, firstReadAfterOutageReturnsOldValueAndTheNextTheSavedOne)
{
    store->setInt32Value(L"n", 1);
    store->breakDown();
    cached.setInt32Value(L"n", 2);
    store->repair();
    EXPECT_EQ(1, cached.getInt32Value(L"n"));
    // What was read just now is older than what was saved behind it, and yet it is what the cache holds.
    store->breakDown();
    EXPECT_EQ(1, cached.getInt32Value(L"n"));
    store->repair();
    EXPECT_EQ(2, cached.getInt32Value(L"n"));
}

TEST_F(CachedSettingsTest, readThatSucceedsDropsValueThatCannotBeSaved)
{
    struct ReadOnlyStore : FakeSettings {
        void setInt32Value(const std::wstring&, std::int32_t) override { throw std::runtime_error("read-only"); }
    };
    const auto readOnly = std::make_shared<ReadOnlyStore>();
    readOnly->setInt64Value(L"n", 1);
    CachedSettings over(readOnly);
    over.setInt32Value(L"n", 2);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(1, over.getInt32Value(L"n"));
    EXPECT_TRUE(log.has(3, "Failed to save a cache value to the settings. Reason: read-only"));
    EXPECT_TRUE(log.has(3, "Failed to synchronize cached settings with settings provider."));
    EXPECT_EQ(1u, log.count("Failed to save a cache value"));
}

TEST_F(CachedSettingsTest, pendingValuesAreSavedOnceInOrderOfNamesPastAFailingOne)
{
    store->breakDown();
    for (const wchar_t* name : {L"d", L"a", L"b", L"c", L"a"})
        cached.setInt32Value(name, 5);
    store->repair();
    store->breakDown(L"b");
    store->setBoolValue(L"trigger", true);
    for (int i = 0; i < 2; ++i)
        cached.getBoolValue(L"trigger");
    EXPECT_THAT(store->writes(), ElementsAre(L"trigger", L"a", L"c", L"d"));
}

TEST_F(CachedSettingsTest, textThatIsNotValidGoesThroughAsItIsAndIsKeptAsWellAsItCanBe)
{
    struct TextStore : FakeSettings {
        std::wstring getStringValue(Name name) override
        {
            FakeSettings::getStringValue(name); // which throws while it is down
            return text;
        }
        void setStringValue(Name, const std::wstring& value) override { text = value; }
        // One half of a pair behind another character, two halves in the wrong order, a half at the end.
        std::wstring text = {L'\u20ac', wchar_t(0xD83D), L'b', wchar_t(0xDE00), wchar_t(0xD83D)};
    };
    const auto texts = std::make_shared<TextStore>();
    const std::wstring text = texts->text;
    texts->setJsonValue(L"n", "");
    for (const bool written : {false, true}) {
        CachedSettings over(texts);
        texts->text = written ? L"" : text;
        written ? over.setStringValue(L"n", text) : static_cast<void>(over.getStringValue(L"n"));
        EXPECT_EQ(text, texts->text);
        texts->breakDown();
        EXPECT_EQ(L"\u20ac\uFFFDb\uFFFD\uFFFD", over.getStringValue(L"n")) << written;
        texts->repair();
    }
}

TEST_F(CachedSettingsTest, foreignExceptionPassesThroughAndLeavesTheValuePending)
{
    store->fail({}, [] { throw 42; });
    EXPECT_THROW(cached.setInt32Value(L"n", 3), int);
    EXPECT_THROW(cached.getInt32Value(L"n"), int);
    store->repair();
    store->fail(L"n", [] { throw 43; });
    EXPECT_THROW(cached.setBoolValue(L"other", true), int); // out of the walk
    store->repair(L"n");
    cached.setBoolValue(L"other", true);
    EXPECT_EQ(3, store->getInt32Value(L"n"));
}

TEST_F(CachedSettingsTest, slowProviderHoldsUpNoOtherCaller)
{
    store->hold([&] { cached.setInt32Value(L"n", 1); });
    store->breakDown(L"failed");
    cached.setInt32Value(L"failed", 4);
    store->repair(L"failed");
    cached.setInt32Value(L"other", 5);
    EXPECT_EQ(5, cached.getInt32Value(L"other"));
    EXPECT_THAT(store->writes(), ElementsAre(L"other", L"failed")); // not what is under way already
    store->letGo();
}

TEST_F(CachedSettingsTest, saveOvertakenByAWriteEndsWithTheLaterValue)
{
    store->breakDown();
    cached.setInt32Value(L"n", 1);
    store->repair();
    store->hold([&] { cached.setBoolValue(L"trigger", true); });
    cached.setInt32Value(L"n", 2);
    store->letGo();
    EXPECT_EQ(2, store->getInt32Value(L"n"));
}

TEST_F(CachedSettingsTest, finishedWriteDoesNotMarkALaterFailedOneSaved)
{
    store->hold([&] { cached.setInt32Value(L"n", 1); });
    store->breakDown(L"n");
    cached.setInt32Value(L"n", 2);
    store->repair(L"n");
    store->letGo();
    EXPECT_EQ(2, store->getInt32Value(L"n"));
}

TEST_F(CachedSettingsTest, readDoesNotDropAWriteThatFailedMeanwhile)
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

TEST_F(CachedSettingsTest, readBesideAWalkDoesNotDropWhatTheWalkHasNotReached)
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

TEST_F(CachedSettingsTest, noWriteIsLostUnderAFlappingStore)
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
