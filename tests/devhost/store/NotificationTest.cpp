#include "storefixture.h"

#include <future>

using namespace devhost::store;

namespace {

struct NotificationTest : StoreTest {
    SubscriptionId listenTo(const std::string& name)
    {
        return client.subscribe(name, [&](const Change& change) { heard.add(change.name); });
    }
    vx::SharedHandle startServerProcess()
    {
        auto process = startChild(L"--serve \"" + file + L"\" " + instance);
        EXPECT_TRUE(tool.waitForServer(deadline));
        return process;
    }
};

} // namespace

TEST_F(NotificationTest, toldOfWritesByThisAndByAnotherProcess)
{
    server.start();
    listenTo("a");
    client.set("a", Value::fromInt64(1));
    ASSERT_TRUE(heard.await(1));
    EXPECT_EQ(awaitChild(startChild(L"--set " + instance + L" a 2")), 0U);
    ASSERT_TRUE(heard.await(2));
    client.set("a", Value::fromInt64(2));
    client.set("b", Value::fromInt64(2));
    client.remove("a");
    ASSERT_TRUE(heard.await(3));
    listenTo("end");
    client.set("end", Value::fromBool(true));
    ASSERT_TRUE(heard.await(4));
    EXPECT_EQ(heard.count(), 4U);
}

TEST_F(NotificationTest, theWriteIsVisibleWhenItIsTold)
{
    server.start();
    std::promise<std::optional<Value>> read;
    client.subscribe("a", [&](const Change&) { read.set_value(client.get("a")); });
    tool.set("a", Value::fromInt32(7));
    auto value = read.get_future();
    ASSERT_EQ(value.wait_for(deadline), std::future_status::ready);
    EXPECT_EQ(value.get(), Value::fromInt32(7));
}

TEST_F(NotificationTest, aKilledServerComesBackToItsClients)
{
    auto process = startServerProcess();
    client.set("a", Value::fromInt64(1));
    listenTo("a");
    listenTo("quiet");
    killChild(process);
    EXPECT_EQ(codeOf([&] { client.get("a"); }), ErrorCode::Unreachable);
    EXPECT_EQ(codeOf([&] { listenTo("b"); }), ErrorCode::Unreachable);

    process = startServerProcess();
    EXPECT_EQ(client.get("a"), Value::fromInt64(1));
    // Whether the subscriptions are back or not when it is written, the change must be told.
    tool.set("a", Value::fromInt64(2));
    ASSERT_TRUE(heard.await(1));
    tool.set("a", Value::fromInt64(3));
    ASSERT_TRUE(heard.await(2));
    EXPECT_EQ(heard.count(), 2U);
    killChild(process);
}

TEST_F(NotificationTest, anotherFileBehindTheInstanceIsAChange)
{
    server.start();
    for (int i = 1; i <= 5; ++i)
        client.set("a", Value::fromInt32(i));
    listenTo("a");
    server.stop();
    Server emptyServer(folder + L"\\empty.json", instance);
    emptyServer.start();
    ASSERT_TRUE(heard.await(1)) << "the value has gone";
    tool.set("a", Value::fromInt32(6));
    ASSERT_TRUE(heard.await(2));
}

TEST_F(NotificationTest, refusalCutsSubscribersOffAndTheyCatchUp)
{
    server.start();
    listenTo("a");
    tool.setRefuse(true);
    tool.set("a", Value::fromInt32(1));
    EXPECT_EQ(codeOf([&] { listenTo("b"); }), ErrorCode::Unreachable);
    tool.setRefuse(false);
    ASSERT_TRUE(heard.await(1));
}

TEST_F(NotificationTest, aPatternStandsForAllNamesThatBeginSo)
{
    server.start();
    const SubscriptionId id = listenTo("windows.*");
    tool.set("status.a", Value::fromInt32(1));
    tool.set("windows.a", Value::fromInt32(1));
    ASSERT_TRUE(heard.await(1));
    EXPECT_EQ(heard.count(), 1U);
    client.unsubscribe(id);
    EXPECT_EQ(codeOf([&] { client.unsubscribe(id); }), ErrorCode::NotFound);
}

TEST_F(NotificationTest, unsubscribesFromInsideTheCallback)
{
    server.start();
    SubscriptionId id = 0;
    std::promise<void> known;
    id = client.subscribe("a", [&](const Change& change) {
        known.get_future().wait();
        client.unsubscribe(id);
        heard.add(change.name);
    });
    known.set_value();
    tool.set("a", Value::fromInt32(1));
    ASSERT_TRUE(heard.await(1));
    listenTo("end");
    tool.set("a", Value::fromInt32(2));
    tool.set("end", Value::fromInt32(1));
    ASSERT_TRUE(heard.await(2));
    EXPECT_EQ(heard.count(), 2U);
}

TEST_F(NotificationTest, unsubscribingWaitsForARunningCallback)
{
    server.start();
    std::promise<void> entered, released;
    const SubscriptionId id = client.subscribe("a", [&](const Change&) {
        entered.set_value();
        released.get_future().wait();
        // What is waited for may itself use the client.
        client.unsubscribe(client.subscribe("b", [](const Change&) {}));
    });
    const SubscriptionId second = listenTo("a");
    tool.set("a", Value::fromInt32(1));
    entered.get_future().wait();
    auto unsubscribed = std::async(std::launch::async, [&] { client.unsubscribe(id); });
    client.unsubscribe(second);
    EXPECT_EQ(unsubscribed.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    released.set_value();
    ASSERT_EQ(unsubscribed.wait_for(deadline), std::future_status::ready);
    unsubscribed.get();
    listenTo("end");
    tool.set("end", Value::fromInt32(1));
    ASSERT_TRUE(heard.await(1));
    EXPECT_EQ(heard.count(), 1U);
}

TEST_F(NotificationTest, aFailedUnsubscribeLeavesTheSubscription)
{
    server.start();
    const SubscriptionId id = listenTo("a");
    tool.addFault({Operation::Unsubscribe, ErrorCode::Unknown, 1, ""});
    EXPECT_EQ(codeOf([&] { client.unsubscribe(id); }), ErrorCode::Unknown);
    tool.set("a", Value::fromInt32(1));
    ASSERT_TRUE(heard.await(1));
    client.unsubscribe(id);
}
