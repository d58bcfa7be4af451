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

TEST_F(StoreTest, leavesADamagedFileAlone)
{
    server.start();
    application.set("a", Value::fromInt32(1));
    server.stop();
    const std::string whole = support::readFile(storeFile);
    for (const std::string& content : {std::string(), whole.substr(0, whole.size() - 3), std::string("{}")}) {
        support::writeFile(storeFile, content);
        EXPECT_EQ(codeOf([&] { server.start(); }), ErrorCode::SchemaViolation) << content;
        EXPECT_EQ(support::readFile(storeFile), content);
    }
}

TEST_F(StoreTest, carriesLargeValues)
{
    server.start();
    std::string text;
    for (int i = 0; i < 800'000; ++i)
        text += std::to_string(i);
    application.set("big", Value::fromString(text));
    EXPECT_TRUE(client.get("big") == Value::fromString(text));
    EXPECT_EQ(codeOf([&] { application.set("huge", Value::fromString(std::string(70'000'000, 'x'))); }),
        ErrorCode::SizeLimit);
    EXPECT_EQ(client.get("huge"), std::nullopt);
}

TEST_F(StoreTest, plannedFaultsHitApplicationsOnlyTheEarliestThatMatchesFirst)
{
    server.start();
    client.set("a", Value::fromInt32(1));
    client.addFault({Operation::Get, ErrorCode::AccessDenied, 2, "a"});
    client.addFault({Operation::Open, static_cast<ErrorCode>(17), 1, ""});
    client.addFault({Operation::All, ErrorCode::SizeLimit, 1, ""});
    client.addFault({Operation::Set, ErrorCode::NotAllowed, 0, ""});
    EXPECT_TRUE(application.waitForServer(deadline));
    EXPECT_EQ(client.get("a"), Value::fromInt32(1));
    EXPECT_EQ(codeOf([&] { application.get("a"); }), ErrorCode::AccessDenied);
    EXPECT_EQ(codeOf([&] { application.get("b"); }), ErrorCode::SizeLimit);
    EXPECT_EQ(codeOf([&] { application.set("a", Value::fromInt32(2)); }), ErrorCode::Success);
    EXPECT_EQ(client.faultState().faults.at(0).count, 1U);
    EXPECT_EQ(codeOf([&] { application.get("a"); }), ErrorCode::AccessDenied);
    EXPECT_EQ(application.get("a"), Value::fromInt32(2));
    EXPECT_EQ(codeOf([&] { application.open("p", "a", "c"); }), static_cast<ErrorCode>(17));
    EXPECT_EQ(client.faultState(), FaultState{});
}

TEST_F(StoreTest, refusalLastsUntilCleared)
{
    server.start();
    client.set("a", Value::fromInt32(0));
    listenTo("a");
    client.setRefuse(true);
    EXPECT_EQ(codeOf([&] { application.get("a"); }), ErrorCode::Unreachable);
    EXPECT_FALSE(application.waitForServer(std::chrono::milliseconds(0)));
    client.set("a", Value::fromInt32(1));
    client.clearFaults();
    EXPECT_EQ(application.get("a"), Value::fromInt32(1));
    EXPECT_EQ(heard.waitFor(1).size(), 1U) << "once it is let in again";
}

TEST_F(StoreTest, stopsWhileACallIsHeldUp)
{
    server.start();
    client.setDelay(std::chrono::hours(1));
    auto held = std::async(std::launch::async, [&] { return codeOf([&] { application.get("a"); }); });
    EXPECT_EQ(held.wait_for(support::moment), std::future_status::timeout);
    server.stop();
    ASSERT_EQ(held.wait_for(deadline), std::future_status::ready);
    EXPECT_EQ(held.get(), ErrorCode::Unreachable);
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

TEST_F(StoreTest, anotherFileBehindTheInstanceIsAChange)
{
    server.start();
    for (int i = 1; i <= 5; ++i)
        application.set("a", Value::fromInt32(i));
    listenTo("a");
    server.stop();
    Server emptyServer(folder.path() / "empty.json", instance);
    emptyServer.start();
    heard.waitFor(1); // the value has gone
    client.set("a", Value::fromInt32(6));
    heard.waitFor(2);
}

TEST_F(StoreTest, unsubscribesFromInsideTheCallback)
{
    server.start();
    std::promise<SubscriptionId> id;
    id.set_value(application.subscribe("a", [&](const Change& change) {
        application.unsubscribe(id.get_future().get());
        heard.add(change.name);
    }));
    client.set("a", Value::fromInt32(1));
    heard.waitFor(1);
    client.set("a", Value::fromInt32(2));
    EXPECT_EQ(allHeard().size(), 1U);
}

TEST_F(StoreTest, unsubscribingWaitsForARunningCallback)
{
    server.start();
    std::promise<void> entered, released;
    const SubscriptionId id = application.subscribe("a", [&](const Change&) {
        entered.set_value();
        released.get_future().wait();
        // What is waited for may itself use the client.
        application.unsubscribe(application.subscribe("b", [](const Change&) {}));
    });
    const SubscriptionId second = listenTo("a");
    client.set("a", Value::fromInt32(1));
    entered.get_future().wait();
    auto unsubscribed = std::async(std::launch::async, [&] { application.unsubscribe(id); });
    application.unsubscribe(second);
    EXPECT_EQ(unsubscribed.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    released.set_value();
    ASSERT_EQ(unsubscribed.wait_for(deadline), std::future_status::ready);
    unsubscribed.get();
    EXPECT_THAT(allHeard(), testing::IsEmpty());
}

TEST_F(StoreTest, aFailedUnsubscribeLeavesTheSubscription)
{
    server.start();
    const SubscriptionId id = listenTo("a");
    client.addFault({Operation::Unsubscribe, ErrorCode::Unknown, 1, ""});
    EXPECT_EQ(codeOf([&] { application.unsubscribe(id); }), ErrorCode::Unknown);
    client.set("a", Value::fromInt32(1));
    heard.waitFor(1);
    application.unsubscribe(id);
}
