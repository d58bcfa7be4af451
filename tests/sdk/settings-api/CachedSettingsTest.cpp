#include "settings-api/cachedsettings.h"

#include "settings-api/details/synchronize.h"
#include "settings-api/exceptions.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vx::settings;
using nlohmann::json;
using support::FakeSettings;
using support::LogCapture;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class CachedSettingsTest : public testing::Test {
protected:
    void breakStore(const std::wstring& name = {})
    {
        m_store->fail(name, std::make_exception_ptr(std::runtime_error("store is down")));
    }
    void repairStore() { m_store->fail({}, nullptr); }

    std::shared_ptr<FakeSettings> m_store = std::make_shared<FakeSettings>();
    CachedSettings m_cached{m_store};
};

struct TypeCase {
    const char* label;
    std::function<void(details::SettingsImpl&)> write;
    std::function<bool(details::SettingsImpl&)> readsWhatWasWritten;
    const char* readFailure;
    const char* writeFailure;
};

const TypeCase typeCases[] = {
    {"bool", [](auto& s) { s.setBoolValue(L"n", true); }, [](auto& s) { return s.getBoolValue(L"n"); },
        "Failed to read a bool value: n", "Failed to set bool value: n"},
    {"int32", [](auto& s) { s.setInt32Value(L"n", INT32_MIN); },
        [](auto& s) { return s.getInt32Value(L"n") == INT32_MIN; }, "Failed to read a std::int32_t value: n",
        "Failed to set int32 value: n"},
    {"int64", [](auto& s) { s.setInt64Value(L"n", INT64_MIN); },
        [](auto& s) { return s.getInt64Value(L"n") == INT64_MIN; }, "Failed to read a std::int64_t value: n",
        "Failed to set int64 value: n"},
    {"double", [](auto& s) { s.setDoubleValue(L"n", 0.1); }, [](auto& s) { return s.getDoubleValue(L"n") == 0.1; },
        "Failed to read a double value: n", "Failed to set double value: n"},
    {"string", [](auto& s) { s.setStringValue(L"n", L"\u20ac \u00df"); },
        [](auto& s) { return s.getStringValue(L"n") == L"\u20ac \u00df"; }, "Failed to read a std::wstring value: n",
        "Failed to set name value: n"},
    {"json",
        [](auto& s) {
            s.setJsonValue(L"n", json::array({1, "a"}));
        },
        [](auto& s) {
            return s.getJsonValue(L"n") == json::array({1, "a"});
        },
        "Failed to read a nlohmann::json value: n", "Failed to set json value: n"},
};

} // namespace

TEST_F(CachedSettingsTest, outageAnswersWithWrittenValueAndRecoverySavesIt)
{
    for (const TypeCase& type : typeCases) {
        SCOPED_TRACE(type.label);
        m_store = std::make_shared<FakeSettings>();
        CachedSettings cached(m_store);
        const LogCapture log;
        breakStore();

        EXPECT_NO_THROW(type.write(cached));
        EXPECT_TRUE(type.readsWhatWasWritten(cached));
        EXPECT_TRUE(log.has(3, type.writeFailure + std::string(". Exception caught: store is down")));
        EXPECT_TRUE(log.has(
            3, type.readFailure + std::string(". Exception caught: store is down. Will be used a cached value")));

        repairStore();
        cached.setBoolValue(L"other", true);
        EXPECT_TRUE(type.readsWhatWasWritten(*m_store));
        EXPECT_TRUE(log.has(5, "Cached value n successfully saved"));
    }
}

TEST_F(CachedSettingsTest, valueOnceReadSurvivesOutage)
{
    m_store->setStringValue(L"n", L"seen");
    m_cached.getStringValue(L"n");
    breakStore();
    EXPECT_EQ(L"seen", m_cached.getStringValue(L"n"));
}

TEST_F(CachedSettingsTest, firstReadDuringOutageThrowsWithoutTheName)
{
    breakStore();
    try {
        m_cached.getInt64Value(L"n");
        FAIL();
    } catch (const NotFoundException& exception) {
        EXPECT_EQ(L"Cached value doesn't exist", exception.setting());
        EXPECT_THAT(exception.what(), HasSubstr("Function: vx::settings::CachedSettings::getInt64Value,"));
    }
}

TEST_F(CachedSettingsTest, firstReadAfterOutageReturnsOldValueAndTheNextTheSavedOne)
{
    m_store->setInt32Value(L"n", 1);
    breakStore();
    m_cached.setInt32Value(L"n", 2);
    repairStore();
    EXPECT_EQ(1, m_cached.getInt32Value(L"n"));
    // What was read just now is older than what was saved behind it, and yet it is what the cache holds.
    breakStore();
    EXPECT_EQ(1, m_cached.getInt32Value(L"n"));
    repairStore();
    EXPECT_EQ(2, m_cached.getInt32Value(L"n"));
}

TEST_F(CachedSettingsTest, readThatSucceedsDropsValueThatCannotBeSaved)
{
    struct ReadOnlyStore : FakeSettings {
        void setInt32Value(const std::wstring&, std::int32_t) override { throw std::runtime_error("read-only"); }
    };
    const auto store = std::make_shared<ReadOnlyStore>();
    store->setInt64Value(L"n", 1);
    CachedSettings cached(store);
    const LogCapture log;

    cached.setInt32Value(L"n", 2);
    EXPECT_EQ(1, cached.getInt32Value(L"n"));
    EXPECT_TRUE(log.has(3, "Failed to save a cache value to the settings. Reason: read-only"));
    EXPECT_TRUE(log.has(3, "Failed to synchronize cached settings with settings provider."));
    cached.getInt32Value(L"n");
    EXPECT_EQ(1u, log.count("Failed to save a cache value"));
}

TEST_F(CachedSettingsTest, pendingValuesAreSavedOnceInOrderOfNamesPastAFailingOne)
{
    breakStore();
    for (const wchar_t* name : {L"d", L"a", L"b", L"c", L"a"})
        m_cached.setInt32Value(name, 5);
    repairStore();
    breakStore(L"b");
    m_store->setBoolValue(L"trigger", true);
    m_cached.getBoolValue(L"trigger");
    m_cached.getBoolValue(L"trigger");
    EXPECT_THAT(m_store->writes(), ElementsAre(L"trigger", L"a", L"c", L"d"));
}

TEST_F(CachedSettingsTest, cachedValueConvertsAsTheJsonLibraryDoes)
{
    breakStore();
    m_cached.setStringValue(L"text", L"1");
    m_cached.setDoubleValue(L"double", 2.9);
    m_cached.setBoolValue(L"bool", true);
    EXPECT_EQ(2, m_cached.getInt32Value(L"double"));
    EXPECT_EQ(1, m_cached.getInt32Value(L"bool"));
    const std::pair<std::function<void()>, const char*> refused[] = {
        {[&] { m_cached.getInt32Value(L"text"); }, "type must be number, but is string"},
        {[&] { m_cached.getBoolValue(L"double"); }, "type must be boolean, but is number"},
        {[&] { m_cached.getInt64Value(L"bool"); }, "type must be number, but is boolean"},
        {[&] { m_cached.getStringValue(L"bool"); }, "type must be string, but is boolean"},
    };
    for (const auto& [read, text] : refused) {
        try {
            read();
            ADD_FAILURE() << text;
        } catch (const json::type_error& error) {
            EXPECT_EQ(302, error.id);
            EXPECT_THAT(error.what(), HasSubstr(text));
        }
    }
}

TEST_F(CachedSettingsTest, foreignExceptionPassesThroughAndLeavesTheValuePending)
{
    m_store->fail({}, std::make_exception_ptr(42));
    EXPECT_THROW(m_cached.setInt32Value(L"n", 3), int);
    EXPECT_THROW(m_cached.getInt32Value(L"n"), int);
    m_store->fail({}, nullptr);
    m_store->fail(L"n", std::make_exception_ptr(43));
    EXPECT_THROW(m_cached.setBoolValue(L"other", true), int); // out of the walk
    m_store->fail(L"n", nullptr);
    m_cached.setBoolValue(L"other", true);
    EXPECT_EQ(3, m_store->getInt32Value(L"n"));
}

TEST_F(CachedSettingsTest, unknownTagFailsAloneAndTheWalkGoesOn)
{
    details::SettingsCache cache;
    const auto put = [&](const wchar_t* name, int tag) {
        cache.endWrite(
            cache.beginWrite(name, {details::ValueType(tag), 4, false}), details::SettingsCache::Outcome::Failed);
    };
    put(L"a", 0);
    put(L"b", 7);
    put(L"c", 2);
    const LogCapture log;
    EXPECT_EQ(details::SynchronizeResult::Incomplete, details::synchronize(cache, *m_store));
    EXPECT_THAT(m_store->writes(), ElementsAre(L"c"));
    EXPECT_TRUE(log.has(3, "Failed to find a handler to save the cached value. Type: 0"));
    EXPECT_TRUE(log.has(3, "Failed to find a handler to save the cached value. Type: 7"));
}

TEST_F(CachedSettingsTest, subscriberMayUseTheSettingsWhileTheWriteIsUnderWay)
{
    m_cached.subscribeForChanges(L"n", [&](const std::wstring&) {
        EXPECT_EQ(1, m_cached.getInt32Value(L"n"));
        m_cached.setInt32Value(L"reply", 2);
    });
    m_cached.setInt32Value(L"n", 1);
    EXPECT_THAT(m_store->writes(), ElementsAre(L"n", L"reply"));
}
