#include "settings-api/cachedsettings.h"

#include "settings-api/details/synchronize.h"
#include "settings-api/exceptions.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "support/thrown.h"

#include <functional>

using namespace vx::settings;
using details::SettingsImpl;
using nlohmann::json;
using support::FakeSettings;
using support::thrown;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

struct CachedSettingsTest : testing::Test {
    std::shared_ptr<FakeSettings> store = std::make_shared<FakeSettings>();
    CachedSettings cached{store};
    support::LogCapture log;
};

struct Type {
    std::string read; ///< its names in the failures of reading and writing
    std::string write;
    std::function<void(SettingsImpl&)> set;
    std::function<bool(SettingsImpl&)> isSet;
};

template <typename Value, typename Get, typename Set>
Type makeType(const char* read, const char* write, Get get, Set set, Value value)
{
    return {read, write, [=](SettingsImpl& s) { (s.*set)(L"n", value); },
        [=](SettingsImpl& s) { return (s.*get)(L"n") == value; }};
}

using S = SettingsImpl;
const Type types[] = {
    makeType("bool", "bool", &S::getBoolValue, &S::setBoolValue, true),
    makeType("std::int32_t", "int32", &S::getInt32Value, &S::setInt32Value, INT32_MIN),
    makeType("std::int64_t", "int64", &S::getInt64Value, &S::setInt64Value, INT64_MIN),
    makeType("double", "double", &S::getDoubleValue, &S::setDoubleValue, 0.1),
    makeType("std::wstring", "name", &S::getStringValue, &S::setStringValue, L"\u20ac \u00df"),
    makeType("nlohmann::json", "json", &S::getJsonValue, &S::setJsonValue, json::array({1, "a"})),
};

} // namespace

TEST_F(CachedSettingsTest, outageAnswersWithWrittenValueAndRecoverySavesIt)
{
    for (const Type& type : types) {
        SCOPED_TRACE(type.read);
        store->breakDown();
        EXPECT_NO_THROW(type.set(cached));
        EXPECT_TRUE(type.isSet(cached));
        EXPECT_TRUE(log.has(3, "Failed to set " + type.write + " value: n. Exception caught: store is down"));
        EXPECT_TRUE(log.has(3, "Failed to read a " + type.read +
                                   " value: n. Exception caught: store is down. Will be used a cached value"));

        store->repair();
        cached.setBoolValue(L"other", true);
        EXPECT_TRUE(type.isSet(*store));
    }
    EXPECT_EQ(std::size(types), log.count("Cached value n successfully saved"));
}

TEST_F(CachedSettingsTest, firstReadDuringOutageThrowsWithoutTheName)
{
    store->breakDown();
    const auto failure = thrown<NotFoundException>([&] { cached.getInt64Value(L"n"); });
    EXPECT_EQ(L"Cached value doesn't exist", failure.setting());
    EXPECT_THAT(failure.what(), HasSubstr("Function: vx::settings::CachedSettings::getInt64Value,"));
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
    EXPECT_EQ(1, over.getInt32Value(L"n"));
    EXPECT_TRUE(log.has(3, "Failed to save a cache value to the settings. Reason: read-only"));
    EXPECT_TRUE(log.has(3, "Failed to synchronize cached settings with settings provider."));
    over.getInt32Value(L"n");
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
    cached.getBoolValue(L"trigger");
    cached.getBoolValue(L"trigger");
    EXPECT_THAT(store->writes(), ElementsAre(L"trigger", L"a", L"c", L"d"));
}

TEST_F(CachedSettingsTest, cachedValueConvertsAsTheJsonLibraryDoes)
{
    store->breakDown();
    cached.setStringValue(L"text", L"1");
    cached.setDoubleValue(L"double", 2.9);
    cached.setBoolValue(L"bool", true);
    EXPECT_EQ(2, cached.getInt32Value(L"double"));
    EXPECT_EQ(1, cached.getInt32Value(L"bool"));
    const std::pair<std::function<void()>, const char*> refused[] = {
        {[&] { cached.getInt32Value(L"text"); }, "type must be number, but is string"},
        {[&] { cached.getBoolValue(L"double"); }, "type must be boolean, but is number"},
        {[&] { cached.getInt64Value(L"bool"); }, "type must be number, but is boolean"},
        {[&] { cached.getStringValue(L"bool"); }, "type must be string, but is boolean"},
    };
    for (const auto& [read, text] : refused) {
        const auto failure = thrown<json::type_error>(read);
        EXPECT_EQ(302, failure.id);
        EXPECT_THAT(failure.what(), HasSubstr(text));
    }
}

TEST_F(CachedSettingsTest, foreignExceptionPassesThroughAndLeavesTheValuePending)
{
    store->fail({}, std::make_exception_ptr(42));
    EXPECT_THROW(cached.setInt32Value(L"n", 3), int);
    EXPECT_THROW(cached.getInt32Value(L"n"), int);
    store->repair();
    store->fail(L"n", std::make_exception_ptr(43));
    EXPECT_THROW(cached.setBoolValue(L"other", true), int); // out of the walk
    store->repair(L"n");
    cached.setBoolValue(L"other", true);
    EXPECT_EQ(3, store->getInt32Value(L"n"));
}

TEST_F(CachedSettingsTest, unknownTagFailsAloneAndTheWalkGoesOn)
{
    details::SettingsCache cache;
    for (const auto& [name, tag] : {std::pair(L"a", 0), {L"b", 7}, {L"c", 2}})
        cache.endWrite(
            cache.beginWrite(name, {details::ValueType(tag), 4, false}), details::SettingsCache::Outcome::Failed);
    EXPECT_EQ(details::SynchronizeResult::Incomplete, details::synchronize(cache, *store));
    EXPECT_THAT(store->writes(), ElementsAre(L"c"));
    for (const char* tag : {"0", "7"})
        EXPECT_TRUE(log.has(3, std::string("Failed to find a handler to save the cached value. Type: ") + tag));
}

TEST_F(CachedSettingsTest, subscriberMayUseTheSettingsWhileTheWriteIsUnderWay)
{
    cached.subscribeForChanges(L"n", [&](const std::wstring&) {
        EXPECT_EQ(1, cached.getInt32Value(L"n"));
        cached.setInt32Value(L"reply", 2);
    });
    cached.setInt32Value(L"n", 1);
    EXPECT_THAT(store->writes(), ElementsAre(L"n", L"reply"));
}

TEST(SettingsExceptionTest, reportsTheSettingBetweenTypeAndReason)
{
    const NotFoundException named(L"a.b", L"function", L"file.cpp", 7);
    EXPECT_STREQ(L"Type: vx::settings::NotFoundException, Setting: a.b, Reason: Setting in not found, "
                 L"Function: function, File: file.cpp, Line: 7",
        named.wideWhat());
    const AccessDeniedException nameless(static_cast<const wchar_t*>(nullptr), L"f", L"g", 1);
    EXPECT_STREQ(L"Type: vx::settings::AccessDeniedException, Setting: , Reason: Access to the setting is denied, "
                 L"Function: f, File: g, Line: 1",
        nameless.wideWhat());
}
