#include "commandtest.h"
#include "ipc-api/ipcclient.h"
#include "ipc-api/ipcserver.h"

#include <future>

namespace {

using namespace support;
using namespace vx::tarn::common;

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
    IPCClient client{"c", 1};
    IPCServer server{"c", 1};
};

} // namespace

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
