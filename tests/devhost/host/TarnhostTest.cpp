#include "host/directorywatch.h"
#include "hostfixture.h"
#include "store/client/client.h"

namespace {

namespace store = devhost::store;
using nlohmann::json;
using testing::HasSubstr;
using namespace std::chrono_literals;

using TarnhostTest = HostTest;

} // namespace

TEST_F(TarnhostTest, answersMistakesWithOneLineAndACode)
{
    expectOneLineEach({
        {"", 2, "subcommand is required"},
        {"frobnicate", 2, "frobnicate"},
        {"run --size 30", 2, "--size"},
        {"run --store a --no-store", 2, "--no-store"},
        {"run --reboots often", 2, "--reboots"},
        {"get", 2, "KEY"},
        {"set some.key 1", 2, "unknown key some.key: give its type with --type"},
        {"set windows.tarnpatch.enabled maybe", 2, "maybe"},
        {"set windows.tarnpatch.installation.automatic.hour 9999999999", 2, "9999999999"},
        {"scan --wait 0", 2, "--wait"},
        {"outage sometimes", 2, "\"sometimes\" is neither on, off nor a number of seconds"},
        {"fault frob 3", 2, "frob"},
        {"fault get", 2, "give the error CODE"},
        {"queue --pop --push ALL", 2, "--p"},
        {"patches --count 2", 2, "--follow"},
        {"run --no-store --agent-dir C:\\missing", 2, "there is no folder C:\\missing"},
        {"get windows.tarnpatch.enabled", 3, "unreachable"},
        {"scan --wait 5", 3, "unreachable"},
        {"watch", 3, "unreachable"},
        {"queue", 3, "unreachable"},
        {"queue --push ALL", 3, "unreachable"},
        {"patches", 3, "unreachable"},
        {"patches --follow", 3, "unreachable"},
        {"stop", 3, "no host of the instance"},
        {"reboot", 3, "no host of the instance"},
        {"run --no-store --plugin C:\\missing.dll", 1, "cannot load C:\\missing.dll"},
        {"log --file C:\\missing\\a.log", 1, "there is no log C:\\missing\\a.log"},
    });
    EXPECT_EQ(call("status").code, 3);
    for (const auto* help : {"--help", "set --help"})
        EXPECT_THAT(call(help).output, HasSubstr("Exit codes:"));
}

TEST_F(TarnhostTest, passesOnWhatARunningHostAndItsStoreRefuse)
{
    const auto host = startHost("--size 28 --no-profile");
    EXPECT_EQ(call("set other.key x --type string").code, 0);
    expectOneLineEach({
        {"run", 5, "already running"},
        {"store", 1, "another server is running; stop it or choose another instance"},
        {"resume-event", 1, "tarnhost: this size of plug-in record has no callback for a resume\n"},
        {"get windows.tarnpatch.enabled", 1, "no value for the key windows.tarnpatch.enabled"},
        {"delete no.key", 1, "no value for the key no.key"},
        {"set other.key 5 --type int32", 1, "other.key: Invalid setting type"},
        {"queue --pop", 1, "the queue is empty"},
        {"queue --remove ALL", 1, "\"ALL\" is not in the queue"},
        {"scan --wait 1", 4, "no acknowledgement within 1 seconds"},
    });
    EXPECT_EQ(call("get windows.tarnpatch.remote_operations.scan_for_updates.start").output, "1\n");
    EXPECT_EQ(json::parse(call("--json status").output).at("store").at("profile"), nullptr);
    call("stop");
}

TEST_F(TarnhostTest, runsThePluginUntilItIsStopped)
{
    const auto host = startHost();
    EXPECT_EQ(call("resume-event").code, 0);
    EXPECT_EQ(call("session-event 5 2").code, 0);
    EXPECT_EQ(call("restart").code, 0);
    const auto status = json::parse(call("--json status").output);
    EXPECT_EQ(status.at("host").at("size"), 36);
    EXPECT_EQ(status.at("store").at("profile"), 1);

    // The plug-in's own result is not 0, so the host reports a failure.
    EXPECT_EQ(call("stop").code, 1);
    EXPECT_EQ(host.wait(), 1u);
    std::vector<std::string> life;
    for (const auto& event : support::parseLines(host.output())) {
        const std::string name = event.at("event");
        EXPECT_NE(event.value("warning", ""), "plug-in still loaded");
        if (name == "state")
            life.push_back("state " + event.at("state").dump());
        else if (name == "main")
            life.push_back("main " + event.at("code").dump());
        else
            life.push_back(name);
    }
    for (const char* name : {"loaded", "state 1", "stop", "state 0", "main 7", "unloaded"})
        EXPECT_EQ(std::ranges::count(life, name), 2) << name;
}

TEST_F(TarnhostTest, readsAndWritesTheRunningStore)
{
    const auto host = startHost();
    EXPECT_EQ(call("set windows.tarnpatch.installation.reboot.force_in_seconds -1").code, 0);
    EXPECT_EQ(call("get windows.tarnpatch.installation.reboot.force_in_seconds").output, "-1\n");
    EXPECT_EQ(call("set --type string other.key", "a b").code, 0);
    EXPECT_EQ(json::parse(call("--json keys other.").output),
        json({{"key", "other.key"}, {"type", "string"}, {"value", "a b"}}));
    EXPECT_EQ(call("delete other.key").code, 0);
    EXPECT_EQ(call("get other.key").code, 1);
    call("stop");
}

TEST_F(TarnhostTest, endsAScanWithItsAcknowledgement)
{
    const auto host = startHost();
    const auto name = vx::str::fromUtf8(instance);
    store::Client values(name);
    store::Client plugin(name);
    plugin.subscribe("windows.tarnpatch.remote_operations.scan_for_updates.start", [&](const store::Change& change) {
        values.set("windows.tarnpatch.remote_operations.scan_for_updates.ack", *values.get(change.name));
    });
    const auto scan = call("--json scan --wait 60");
    EXPECT_EQ(scan.code, 0) << scan.errors;
    EXPECT_THAT(scan.output, HasSubstr("\"event\":\"acknowledged\""));
    call("stop");
}

TEST_F(TarnhostTest, printsTheEndOfALogAndFollowsItThroughARotation)
{
    const support::TemporaryFolder logs;
    const auto file = logs.path() / "sample.log";
    const auto write = [&](const std::u16string& text) {
        support::writeFile(file, std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2));
    };
    write(u"\uFEFFone\r\ntwo\r\nthree\r\n");
    EXPECT_EQ(call("log --lines 2 --file", file.string()).output, "two\nthree\n");
    EXPECT_EQ(call("--json log -n 1 --file", file.string()).output, "{\"line\":\"three\"}\n");

    devhost::host::DirectoryWatch changes(folder.path());
    const auto log = start("log --follow --file \"" + file.string() + "\"");
    const devhost::ipc::Signal never;
    const auto expect = [&](const std::string& text) {
        const auto deadline = std::chrono::steady_clock::now() + 60s;
        while (log.output() != text && std::chrono::steady_clock::now() < deadline)
            changes.wait(never, 1000);
        EXPECT_EQ(log.output(), text);
    };
    expect("one\ntwo\nthree\n");
    std::filesystem::rename(file, logs.path() / "sample.1.log");
    write(u"\uFEFFfour\r\n");
    expect("one\ntwo\nthree\nfour\n");
}
