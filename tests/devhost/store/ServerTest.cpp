#include "storefixture.h"

#include <future>

using namespace devhost::store;
using support::deadline;
using testing::AllOf, testing::HasSubstr, testing::Not, testing::Property;

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

TEST_F(StoreTest, leavesADamagedFileAloneAndSaysSo)
{
    server.start();
    application.set("a", Value::fromInt32(1));
    server.stop();
    const std::string whole = support::readFile(storeFile);
    for (const std::string& content : {std::string(), whole.substr(0, whole.size() / 2),
             whole.substr(0, whole.size() - 3), std::string("[]"), std::string("{}")}) {
        SCOPED_TRACE(content);
        support::writeFile(storeFile, content);
        EXPECT_THAT([&] { server.start(); },
            testing::Throws<StoreException>(AllOf(Property(&StoreException::code, ErrorCode::SchemaViolation),
                Property(&StoreException::what,
                    AllOf(HasSubstr("store.json: the store's file is damaged"), Not(HasSubstr("\n")))))));
        EXPECT_EQ(support::readFile(storeFile), content);
    }
}

TEST_F(StoreTest, oneServerPerInstanceAndPerFile)
{
    server.start();
    Server sameInstance(folder.path() / "other.json", instance);
    Server sameFile(storeFile, instance + L".other");
    EXPECT_EQ(codeOf([&] { sameInstance.start(); }), ErrorCode::NotAllowed);
    EXPECT_EQ(codeOf([&] { sameFile.start(); }), ErrorCode::NotAllowed);
    server.stop();
    sameFile.start();
    EXPECT_TRUE(Client(instance + L".other").waitForServer(deadline));
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
    application.subscribe("a", [&](const Change& change) { heard.add(change.name); });
    client.setRefuse(true);
    EXPECT_EQ(codeOf([&] { application.get("a"); }), ErrorCode::Unreachable);
    EXPECT_FALSE(application.waitForServer(std::chrono::milliseconds(0)));
    client.set("a", Value::fromInt32(1));
    EXPECT_EQ(client.get("a"), Value::fromInt32(1));
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
