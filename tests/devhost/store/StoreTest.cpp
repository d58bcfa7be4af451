#include "stage.h"

#include <future>

using namespace devhost::store;
using support::deadline;
using testing::ElementsAre;

namespace {

struct StoreTest : support::StageTest {
    SubscriptionId listenTo(const std::string& name)
    {
        return application.subscribe(name, [&](const Change& change) { heard.add(change.name); });
    }
    /// The changes told so far, all of them: a last one comes behind them.
    std::vector<std::string> allHeard()
    {
        std::promise<void> told;
        application.subscribe("last", [&](const Change&) { told.set_value(); });
        client.set("last", Value::fromInt32(1));
        EXPECT_EQ(told.get_future().wait_for(deadline), std::future_status::ready);
        return heard.waitFor(0);
    }
    support::ChildProcess startServerProcess()
    {
        auto process = tarnhost("store --file \"" + storeFile.string() + '"');
        EXPECT_TRUE(client.waitForServer(deadline));
        return process;
    }

    Client application{instance, Role::Application};
};

/// The code that an operation ends with.
template <typename Operation>
ErrorCode codeOf(Operation operation)
{
    try {
        operation();
        return ErrorCode::Success;
    } catch (const StoreException& exception) {
        return exception.code();
    }
}

} // namespace

TEST_F(StoreTest, keepsTypesAndTextsAcrossARestartAndAnUnfinishedReplacement)
{
    const std::map<std::string, Value> values{{"b", Value::fromBool(true)}, {"i", Value::fromInt32(-1)},
        {"l", Value::fromInt64(INT64_MIN)}, {"o", Value::fromObject(R"({ "b": 1.10, "a": "\u00e9" })")},
        {"s", Value::fromString("\xD0\x96 \"\\\n")}};
    server.start();
    for (const auto& [name, value] : values)
        application.set(name, value);
    server.stop();
    EXPECT_EQ(codeOf([&] { application.get("b"); }), ErrorCode::Unreachable);
    support::writeFile(storeFile.wstring() + L".new", "{\"form");
    server.start();
    EXPECT_EQ(application.list(), values);
    EXPECT_EQ(codeOf([&] { application.set("i", Value::fromInt64(1)); }), ErrorCode::InvalidType);
    EXPECT_TRUE(application.remove("i"));
    EXPECT_FALSE(application.remove("i"));
    application.set("i", Value::fromInt64(1));
}

TEST_F(StoreTest, toldOfEachChangeByThisAndByAnotherProcess)
{
    server.start();
    listenTo("a");
    const SubscriptionId pattern = listenTo("windows.*");
    application.set("a", Value::fromInt64(1));
    EXPECT_EQ(tarnhost("set a 2 --type int64").wait(), 0U);
    client.set("a", Value::fromInt64(2)); // no change
    client.set("b", Value::fromInt64(1));
    client.set("windows.a", Value::fromInt32(1));
    application.remove("a");
    EXPECT_THAT(heard.waitFor(4), ElementsAre("a", "a", "windows.a", "a"));
    application.unsubscribe(pattern);
    client.remove("windows.a");
    EXPECT_EQ(allHeard().size(), 4U);
}

TEST_F(StoreTest, aKilledServerComesBackToItsClients)
{
    std::optional process = startServerProcess();
    for (const auto* name : {"quiet", "a"}) {
        application.set(name, Value::fromInt64(1));
        listenTo(name);
    }
    process.reset();
    EXPECT_EQ(codeOf([&] { application.get("a"); }), ErrorCode::Unreachable);
    EXPECT_EQ(codeOf([&] { listenTo("b"); }), ErrorCode::Unreachable);

    process.emplace(startServerProcess());
    EXPECT_EQ(application.get("a"), Value::fromInt64(1));
    // Whether the subscriptions are back or not when it is written, the change must be told.
    client.set("a", Value::fromInt64(2));
    heard.waitFor(1);
    client.set("a", Value::fromInt64(3));
    EXPECT_THAT(heard.waitFor(2), ElementsAre("a", "a"));
}
