#include "host/control.h"

#include "host/exitcode.h"
#include "ipc/listener.h"
#include "support/childtest.h"
#include "support/thrown.h"

#include <future>
#include <nlohmann/json.hpp>

namespace devhost::host {

using nlohmann::json;

namespace {

const std::wstring instance = support::uniqueName(L"controltest");

std::future<json> call(const char* what)
{
    return std::async(std::launch::async, [what] { return callHost(instance, {{"do", what}}); });
}

} // namespace

TEST(Control, takesOneRequestAtATimeAndPassesFailuresOn)
{
    std::promise<void> entered, released;
    auto control = serveControl(instance, [&](const json& request) -> json {
        if (request.at("do") == "fail")
            throw CommandError(ExitCode::TimedOut, "no time");
        if (request.at("do") == "block") {
            entered.set_value();
            released.get_future().wait();
        }
        return request;
    });
    auto blocked = call("block");
    entered.get_future().wait();
    auto second = call("nothing");
    EXPECT_EQ(second.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    released.set_value();
    EXPECT_EQ(blocked.get().at("do"), "block");
    EXPECT_EQ(second.get().at("do"), "nothing");
    const auto failure = support::thrown<CommandError>([] { call("fail").get(); });
    EXPECT_EQ(failure.code(), ExitCode::TimedOut);
    EXPECT_STREQ(failure.what(), "no time");
    control.reset();
    EXPECT_EQ(support::thrown<CommandError>([] { call("fail").get(); }).code(), ExitCode::NotRunning);
}

TEST(Control, answersTheRequestThatEndsIt)
{
    std::promise<void> ending;
    auto control = serveControl(instance, [&](const json& request) {
        ending.set_value();
        return request;
    });
    auto last = call("stop");
    ending.get_future().wait();
    control.reset();
    EXPECT_EQ(last.get().at("do"), "stop");
}

} // namespace devhost::host
