#include "host/control.h"

#include "host/exitcode.h"
#include "ipc/listener.h"
#include "support/childtest.h"

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

/// What a command of the user would see of the failure.
std::string failureOf(const char* what)
{
    try {
        return call(what).get().dump();
    } catch (const CommandError& error) {
        return std::to_string(static_cast<int>(error.code())) + " " + error.what();
    }
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
    EXPECT_EQ(failureOf("fail"), "4 no time");
    control.reset();
    EXPECT_THAT(failureOf("fail"), testing::StartsWith("3 no host of the instance"));
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
