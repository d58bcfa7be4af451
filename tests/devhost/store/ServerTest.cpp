#include "storefixture.h"

#include <future>

using namespace devhost::store;
using support::deadline;
using testing::AllOf, testing::HasSubstr, testing::Not, testing::Property;

TEST_F(StoreTest, keepsTypesAndTextsAcrossARestart)
{
    const std::map<std::string, Value> values{{"b", Value::fromBool(true)}, {"i", Value::fromInt32(-1)},
        {"l", Value::fromInt64(INT64_MIN)}, {"o", Value::fromObject(R"({ "b": 1.10, "a": "\u00e9" })")},
        {"s", Value::fromString("\xD0\x96 \"\\\n")}};
    server.start();
    for (const auto& [name, value] : values)
        client.set(name, value);
    server.stop();
    EXPECT_EQ(codeOf([&] { client.get("b"); }), ErrorCode::Unreachable);
    server.start();
    EXPECT_EQ(client.list(), values);
    EXPECT_EQ(codeOf([&] { client.set("i", Value::fromInt64(1)); }), ErrorCode::InvalidType);
    EXPECT_TRUE(client.remove("i"));
    EXPECT_FALSE(client.remove("i"));
    EXPECT_EQ(client.get("i"), std::nullopt);
    client.set("i", Value::fromInt64(1));
}

TEST_F(StoreTest, leavesADamagedFileAloneAndSaysSo)
{
    server.start();
    client.set("a", Value::fromInt32(1));
    server.stop();
    const std::string whole = support::readFile(file);
    for (const std::string& content : {std::string(), whole.substr(0, whole.size() / 2),
             whole.substr(0, whole.size() - 3), std::string("[]"), std::string("{}")}) {
        SCOPED_TRACE(content);
        support::writeFile(file, content);
        EXPECT_THAT([&] { server.start(); },
            testing::Throws<StoreException>(AllOf(Property(&StoreException::code, ErrorCode::SchemaViolation),
                Property(&StoreException::what,
                    AllOf(HasSubstr("store.json: the store's file is damaged"), Not(HasSubstr("\n")))))));
        EXPECT_EQ(support::readFile(file), content);
    }
}

TEST_F(StoreTest, anUnfinishedReplacementDoesNoHarm)
{
    server.start();
    client.set("a", Value::fromInt32(1));
    server.stop();
    support::writeFile(file.wstring() + L".new", "{\"form");
    server.start();
    EXPECT_EQ(client.get("a"), Value::fromInt32(1));
    client.set("a", Value::fromInt32(2));
    EXPECT_EQ(client.get("a"), Value::fromInt32(2));
}

TEST_F(StoreTest, oneServerPerInstanceAndPerFile)
{
    server.start();
    Server sameInstance(folder.path() / "other.json", instance);
    Server sameFile(file, instance + L".other");
    EXPECT_EQ(codeOf([&] { sameInstance.start(); }), ErrorCode::NotAllowed);
    EXPECT_EQ(codeOf([&] { sameFile.start(); }), ErrorCode::NotAllowed);
    const auto third = tarnhost(L"store --file \"" + file.native() + L'"', L".third");
    EXPECT_EQ(third.wait(), 1u);
    EXPECT_THAT(third.errors(), HasSubstr("another server is using this store's file"));
    server.stop();
    sameFile.start();
    EXPECT_TRUE(Client(instance + L".other").waitForServer(deadline));
}

TEST_F(StoreTest, carriesLargeValues)
{
    server.start();
    std::string text(5'000'000, ' ');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>(' ' + i % 89);
    client.set("big", Value::fromString(text));
    EXPECT_TRUE(tool.get("big") == Value::fromString(text));
    EXPECT_EQ(
        codeOf([&] { client.set("huge", Value::fromString(std::string(70'000'000, 'x'))); }), ErrorCode::SizeLimit);
    EXPECT_EQ(tool.get("huge"), std::nullopt);
}

TEST_F(StoreTest, plannedFaultsHitApplicationsOnlyTheEarliestThatMatchesFirst)
{
    server.start();
    tool.set("a", Value::fromInt32(1));
    tool.addFault({Operation::Get, ErrorCode::AccessDenied, 2, "a"});
    tool.addFault({Operation::Open, static_cast<ErrorCode>(17), 1, ""});
    tool.addFault({Operation::All, ErrorCode::SizeLimit, 1, ""});
    tool.addFault({Operation::Set, ErrorCode::NotAllowed, 0, ""});
    EXPECT_TRUE(client.waitForServer(deadline));
    EXPECT_EQ(tool.get("a"), Value::fromInt32(1));
    EXPECT_EQ(codeOf([&] { client.get("a"); }), ErrorCode::AccessDenied);
    EXPECT_EQ(codeOf([&] { client.get("b"); }), ErrorCode::SizeLimit);
    EXPECT_EQ(codeOf([&] { client.set("a", Value::fromInt32(2)); }), ErrorCode::Success);
    EXPECT_EQ(tool.faultState().faults.at(0).count, 1U);
    EXPECT_EQ(codeOf([&] { client.get("a"); }), ErrorCode::AccessDenied);
    EXPECT_EQ(client.get("a"), Value::fromInt32(2));
    EXPECT_EQ(codeOf([&] { client.open("p", "a", "c"); }), static_cast<ErrorCode>(17));
    EXPECT_EQ(tool.faultState(), FaultState{});
}

TEST_F(StoreTest, refusalAndDelayLastUntilCleared)
{
    server.start();
    client.subscribe("a", [&](const Change& change) { heard.add(change.name); });
    tool.setRefuse(true);
    EXPECT_EQ(codeOf([&] { client.get("a"); }), ErrorCode::Unreachable);
    EXPECT_FALSE(client.waitForServer(std::chrono::milliseconds(0)));
    tool.set("a", Value::fromInt32(1));
    EXPECT_EQ(tool.get("a"), Value::fromInt32(1));
    tool.clearFaults();
    EXPECT_EQ(client.get("a"), Value::fromInt32(1));
    EXPECT_EQ(heard.waitFor(1).size(), 1U) << "once it is let in again";

    tool.setDelay(std::chrono::milliseconds(150));
    const auto begin = std::chrono::steady_clock::now();
    client.get("a");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(140));
}

TEST_F(StoreTest, stopsWhileACallIsHeldUp)
{
    server.start();
    tool.setDelay(std::chrono::hours(1));
    auto held = std::async(std::launch::async, [&] { return codeOf([&] { client.get("a"); }); });
    server.stop();
    ASSERT_EQ(held.wait_for(deadline), std::future_status::ready);
    EXPECT_EQ(held.get(), ErrorCode::Unreachable);
}
