#include "storefixture.h"

#include <future>

using namespace devhost::store;
using support::deadline;
using testing::ElementsAre;

namespace {

struct NotificationTest : StoreTest {
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
};

} // namespace

TEST_F(NotificationTest, toldOfEachChangeByThisAndByAnotherProcess)
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

TEST_F(NotificationTest, aKilledServerComesBackToItsClients)
{
    std::optional process = startServerProcess();
    application.set("a", Value::fromInt64(1));
    listenTo("a");
    listenTo("quiet");
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

TEST_F(NotificationTest, anotherFileBehindTheInstanceIsAChange)
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

TEST_F(NotificationTest, unsubscribesFromInsideTheCallback)
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

TEST_F(NotificationTest, unsubscribingWaitsForARunningCallback)
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

TEST_F(NotificationTest, aFailedUnsubscribeLeavesTheSubscription)
{
    server.start();
    const SubscriptionId id = listenTo("a");
    client.addFault({Operation::Unsubscribe, ErrorCode::Unknown, 1, ""});
    EXPECT_EQ(codeOf([&] { application.unsubscribe(id); }), ErrorCode::Unknown);
    client.set("a", Value::fromInt32(1));
    heard.waitFor(1);
    application.unsubscribe(id);
}
