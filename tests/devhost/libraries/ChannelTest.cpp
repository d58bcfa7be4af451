#include "commandtest.h"
#include "ipc-api/ipcclient.h"
#include "ipc-api/ipcserver.h"

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
