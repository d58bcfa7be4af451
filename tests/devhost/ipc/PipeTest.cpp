#include "ipc/listener.h"
#include "support/childtest.h"

#include <future>

namespace devhost::ipc {

namespace {

/// A listener that lives for one test, on a name of this process's own.
struct PipeTest : testing::Test {
    void serve(Listener::Serve serve) { listener.emplace(name, std::move(serve)); }
    std::unique_ptr<Pipe> connect(Limits limits = {nullptr, 60'000}) const { return Pipe::connect(name, limits); }

    const std::wstring name = support::uniqueName(L"\\\\.\\pipe\\tarnhd.pipetest");
    std::optional<Listener> listener;
};

} // namespace

TEST_F(PipeTest, carriesFramesOfAnyLengthUntilTheOtherSideLeaves)
{
    EXPECT_EQ(connect(), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    serve([](Pipe& pipe, const Signal&) {
        for (int i = 0; i < 3; ++i)
            pipe.send(pipe.receive().value_or("nothing"));
        pipe.send("that was all");
    });
    const auto pipe = connect();
    for (const std::string& frame : {std::string(), std::string("a"), std::string(1'000'000, 'x')}) {
        EXPECT_TRUE(pipe->send(frame));
        EXPECT_TRUE(pipe->receive() == frame);
    }
    EXPECT_EQ(pipe->receive(), "that was all");
    EXPECT_EQ(pipe->receive(), std::nullopt);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BROKEN_PIPE));
}

TEST_F(PipeTest, endsAWaitAtEitherLimit)
{
    serve([](Pipe& pipe, const Signal& stop) {
        pipe.limit({&stop});
        pipe.receive(); // the listener ends while this waits
    });
    const auto silent = connect({nullptr, 1});
    EXPECT_EQ(silent->receive(), std::nullopt);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(WAIT_TIMEOUT));
    const Signal stop;
    stop.set();
    EXPECT_EQ(connect({&stop})->receive(), std::nullopt);
    auto ended = std::async(std::launch::async, [&] { listener.reset(); });
    EXPECT_EQ(ended.wait_for(std::chrono::seconds(60)), std::future_status::ready);
}

} // namespace devhost::ipc
