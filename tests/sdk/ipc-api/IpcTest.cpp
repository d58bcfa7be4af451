#include "fakeipc.h"
#include "support/gate.h"
#include "vxtl/modulelife.h"

#include <stdexcept>

using namespace vx::tarn::common;
using testing::ElementsAre;

TEST_F(IpcTest, looksForTheLibraryAtEachUseUntilItIsThere)
{
    status = vx::delayload::LoadStatus::FunctionNotFound;
    IPCClient client("c", 3, library);
    EXPECT_EQ(client.send(1, {}), 1000000u);
    EXPECT_EQ(server->start(take), 1000000u);
    EXPECT_EQ(log.count("Failed to delay load IPC library. Status: 2"), 2u);
    EXPECT_EQ(log.count("Failed to load IPC library."), 2u);
    status = vx::delayload::LoadStatus::Success;
    EXPECT_EQ(client.send(1, {{"a", "\xC3\xA9"}}), 0u);
    code = 109;
    EXPECT_EQ(client.send(2, "b"), 109u);
    EXPECT_TRUE(log.has(2, "Failed to send data through IPC channel with name c")) << log.text();
    EXPECT_THAT(calls, ElementsAre("load", "load", "load", "c 3 1 {\"a\":\"\xC3\xA9\"}", "c 3 2 \"b\""));
}

TEST_F(IpcTest, aRunningServerIsStoppedBeforeItIsStartedAnewAndAtItsEnd)
{
    for (int start = 0; start < 2; ++start)
        EXPECT_EQ(server->start(take), 0u);
    for (int stop = 0; stop < 2; ++stop)
        EXPECT_EQ(server->stop(), 0u);
    EXPECT_TRUE(log.has(5, "No need to stop IPC server, it isn't running"));
    server->start(take);
    code = 31;
    EXPECT_EQ(server->stop(), 31u);
    EXPECT_TRUE(log.has(2, "Failed to stop IPC server. Error code: 31"));
    EXPECT_TRUE(vx::modulelife::isKept()) << "the library may still call";
    EXPECT_EQ(server->start(take), 31u);
    EXPECT_TRUE(log.has(2, "Failed to start IPC server. Error code: 31"));
    EXPECT_EQ(deliver("1"), 11) << "the handler is set all the same";
    code = 0;
    server->start(take);
    server.reset();
    EXPECT_THAT(calls, ElementsAre("load", "run c 9", "stop 1", "run c 9", "stop 2", "run c 9", "stop 3", "run c 9",
                           "run c 9", "stop 4"));
    EXPECT_EQ(deliver("1"), 0) << "the server is gone";
}

TEST_F(IpcTest, theHandlerGetsEachBodyAsJson)
{
    server->start(take);
    const std::string deepest = std::string(100, '[') + std::string(100, ']'), tooDeep = '[' + deepest + ']';
    const std::tuple<std::string, std::string, bool> rows[] = {{"", "5 null", false}, {"abc", "5 \"abc\"", true},
        {deepest, "5 " + deepest, false}, {tooDeep, "5 \"" + tooDeep + '"', true}};
    for (const auto& [body, value, isWarned] : rows) {
        EXPECT_EQ(deliver(body), 11);
        EXPECT_EQ(taken.back(), value);
        const std::string warning = "Failed to parse json data from: \"" + body + "\". Data will be wrapped to json. ";
        EXPECT_EQ(log.has(3, warning + "Exception: [json.exception.parse_error.101] "), isWarned) << log.text();
    }
    EXPECT_EQ(callback(5, nullptr, 3, nullptr, context), 11);
    EXPECT_EQ(taken.back(), "5 null");
}

TEST_F(IpcTest, messagesWithoutAHandlerAndHandlersThatThrowGiveZero)
{
    messageAtOnce = true;
    server->start(take);
    EXPECT_THAT(taken, ElementsAre());
    server->start([](auto, auto&) -> std::int32_t { throw std::runtime_error("not today"); });
    EXPECT_THAT(taken, ElementsAre("5 1")) << "the earlier handler stays until the server runs anew";
    EXPECT_EQ(deliver("1"), 0);
    EXPECT_TRUE(log.has(2, "not today"));
    server->start({});
    EXPECT_EQ(deliver("1"), 0);
    context = nullptr;
    EXPECT_EQ(deliver("1"), 0);
    EXPECT_EQ(log.count("There is no handler for IPC message."), 2u);
}

TEST_F(IpcTest, theEndOfAServerWaitsForItsHandlersOnOtherThreads)
{
    support::Gate gate;
    bool isHandled = false;
    server->start([&](auto, auto&) { return gate.pass(), isHandled = true, 0; });
    const auto message = std::async(std::launch::async, [this] { return deliver("1"); });
    gate.waitUntilEntered();
    stopping = [&] { gate.open(); }; // and the library doesn't wait
    server.reset();
    EXPECT_TRUE(isHandled);
    stopping = [] {};
    server.emplace("c", 9u, library).start([&](auto, auto&) { return server.reset(), 3; });
    EXPECT_EQ(deliver("1"), 3);
}
