#include "commandtest.h"
#include "ipc-api/ipcclient.h"
#include "ipc-api/ipcserver.h"
#include "support/machine.h"
#include "systemloader.h"

#include <future>

namespace {

using namespace support;
using namespace vx::tarn::common;
using testing::ElementsAre;

class ChannelTest : public CommandTest {
protected:
    /// Serves in a process of its own; up when this returns.
    ChildProcess serve(const std::string& options)
    {
        auto process = tarnhost("--json ipc serve c " + options);
        waitForOutput(process, "\"serving\"");
        return process;
    }
    void waitForOutput(const ChildProcess& process, const std::string& text)
    {
        waitFor(folder.path(), text, [&] { return process.output().find(text) != std::string::npos; });
    }
    unsigned long sendElsewhere(const std::string& body) const
    {
        return tarnhost("ipc send c 3 " + body).wait().value_or(999);
    }

    IPCClient client{"c", 1};
    IPCServer server{"c", 1};
};

} // namespace

TEST_F(ChannelTest, bodiesOfAllKindsReachAnotherProcess)
{
    const std::string longText(1'000'000, 'x');
    const auto process = serve("--count 4");
    for (const std::string body : {"", "abc"})
        EXPECT_EQ(IpcLibrary::ofProcess().ensureIpcLoaded()->send(
                      "c", 0, 2, body.data(), static_cast<std::uint32_t>(body.size()), 0, 0),
            0u);
    for (const json& body : {json{{"a", "\xC3\xA9"}}, json(longText)})
        EXPECT_EQ(client.send(2, body), 0u);
    EXPECT_EQ(process.wait(), 0u);
    std::vector<json> bodies;
    std::istringstream output(process.output());
    for (std::string line; std::getline(output, line);)
        bodies.push_back(json::parse(line).value("data", json("serving")));
    EXPECT_THAT(bodies, ElementsAre("serving", json(), "abc", json{{"a", "\xC3\xA9"}}, longText));
}

TEST_F(ChannelTest, aServerServesFromItsStartToItsStopWhateverItsHandlerDoes)
{
    Texts taken; // each before its sender's process has ended
    const IPCServer::Handler take = [&](std::uint32_t, const json& data) -> std::int32_t {
        taken.push_back(data.dump());
        throw std::runtime_error("not today");
    };
    for (int start = 1; start <= 2; ++start) {
        EXPECT_EQ(sendElsewhere("0"), 1u);
        EXPECT_EQ(server.start(take), 0u);
        EXPECT_EQ(server.start(take), 0u) << "anew";
        for (const auto* body : {"1", "2"})
            EXPECT_EQ(sendElsewhere(body), 0u);
        EXPECT_EQ(tarnhost("ipc serve c").wait(), 1u) << "the channel is taken";
        EXPECT_EQ(server.stop(), 0u);
    }
    EXPECT_THAT(taken, ElementsAre("1", "2", "1", "2"));
}

TEST_F(ChannelTest, nobodyHangsWhenTheOtherSideIsKilledInTheMiddleOfASend)
{
    std::optional<ChildProcess> process(serve("--hold 60"));
    auto sent = std::async(std::launch::async, [this] { return client.send(1, "1"); });
    waitForOutput(*process, "\"message\"");
    process.reset();
    ASSERT_EQ(sent.wait_for(deadline / 2), std::future_status::ready);
    EXPECT_NE(sent.get(), 0u);

    const devhost::ipc::Signal entered, opened;
    EXPECT_EQ(server.start([&](std::uint32_t, const json&) { return entered.set(), opened.wait(30'000) ? 0 : 1; }), 0u);
    process.emplace(tarnhost("ipc send c 1"));
    EXPECT_TRUE(entered.wait(30'000));
    process.reset();
    opened.set();
    EXPECT_EQ(server.stop(), 0u);
    serve("--count 1"); // the channel is free again
}

TEST_F(ChannelTest, aLibraryThatIsMissingIsFoundOnceItIsThere)
{
    vx::delayload::Bootstrap bootstrap(std::make_shared<vx::delayload::SystemLoader>());
    IpcLibrary library([&](IpcFunctions& functions) {
        vx::delayload::LoadResult result{};
        const auto bind = [&](vx::delayload::LateBinder& binder) { bindIpcLibrary(binder, functions); };
        bootstrap.initialize({folder.path().wstring(), false, 990018}, bind, result);
        return result;
    });
    IPCClient late("c", 1, library);
    EXPECT_EQ(late.send(1, {}), noIpcLibrary);
    std::filesystem::copy_file(programFolder() / "QRLIPC.dll", folder.path() / "QRLIPC.dll");
    const auto process = serve("--count 1");
    EXPECT_EQ(late.send(1, {}), 0u);
}

TEST_F(ChannelTest, errorsAreThoseThatArePlannedOrOnesOwn)
{
    const Machine own;
    std::uint32_t inside = 0;
    server.start([&](std::uint32_t, const json&) { return inside = server.stop(), 0; });
    call("system-fault QRLIPC::Send 31 --count 2");
    for (const std::uint32_t code : {31u, 31u, 0u})
        EXPECT_EQ(client.send(1, {}), code);
    EXPECT_EQ(inside, ERROR_POSSIBLE_DEADLOCK) << "a stop from inside a handler is refused";
    expectOneLineEach({{"ipc send c", 2, "give the TYPE"}, {"ipc send c 1 {", 2, "the BODY is no JSON: {"}});
}
