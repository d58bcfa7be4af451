#include "hostfixture.h"

#include <map>

namespace {

using namespace support;
using testing::HasSubstr;

using TarnhostTest = HostTest;

} // namespace

TEST_F(TarnhostTest, answersMistakesWithOneLineAndACode)
{
    expectOneLineEach({
        {"", 2, "subcommand is required"},
        {"frobnicate", 2, "frobnicate"},
        {"run --size 30", 2, "--size"},
        {"run --store a --no-store", 2, "--no-store"},
        {"get", 2, "KEY"},
        {"set some.key 1", 2, "unknown key some.key: give its type with --type"},
        {"set windows.tarnpatch.enabled maybe", 2, "maybe"},
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
        {"queue --push ALL", 3, "unreachable"},
        {"stop", 3, "no host of the instance"},
        {"run --no-store --plugin C:\\missing.dll", 1, "cannot load C:\\missing.dll"},
        {"log --file C:\\missing\\a.log", 1, "there is no log C:\\missing\\a.log"},
    });
    EXPECT_EQ(call("status").code, 3);
    for (const auto* help : {"--help", "set --help"})
        EXPECT_THAT(call(help).output, HasSubstr("Exit codes:"));
}

TEST_F(TarnhostTest, worksOnARunningHostAndItsStoreAndPassesOnWhatTheyRefuse)
{
    const auto host = startHost("--size 28 --no-profile");
    EXPECT_EQ(call("set windows.tarnpatch.installation.reboot.force_in_seconds -1").code, 0);
    EXPECT_EQ(call("get windows.tarnpatch.installation.reboot.force_in_seconds").output, "-1\n");
    EXPECT_EQ(call("set --type string other.key", "a b").code, 0);
    EXPECT_EQ(callJson("keys other."), json({{"key", "other.key"}, {"type", "string"}, {"value", "a b"}}));
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
    EXPECT_EQ(get(settings.remoteOperations.scanForUpdates.start), 1);
    EXPECT_EQ(callJson("status").at("store").at("profile"), nullptr);
    EXPECT_EQ(call("delete other.key").code, 0);
    EXPECT_EQ(client.get("other.key"), std::nullopt);
    call("stop");
}

TEST_F(TarnhostTest, runsThePluginUntilItIsStoppedAndScansUntilTheAcknowledgement)
{
    const auto host = startHost();
    EXPECT_EQ(call("resume-event").code, 0);
    EXPECT_EQ(call("session-event 5 2").code, 0);
    EXPECT_EQ(call("restart").code, 0);
    EXPECT_EQ(callJson("status").at("host").at("size"), 36);
    EXPECT_EQ(callJson("status").at("store").at("profile"), 1);
    devhost::store::Client plugin(instance);
    const auto& scan = settings.remoteOperations.scanForUpdates;
    plugin.subscribe(keyOf(scan.start), [&](const devhost::store::Change&) { put(scan.ack, get(scan.start)); });
    EXPECT_THAT(call("--json scan --wait 60").output, HasSubstr("\"event\":\"acknowledged\""));

    // The plug-in's own result is not 0, so the host reports a failure.
    EXPECT_EQ(call("stop").code, 1);
    EXPECT_EQ(host.wait(), 1u);
    std::map<std::string, int> life;
    for (const auto& event : parseLines(host.output())) {
        EXPECT_NE(event.value("warning", ""), "plug-in still loaded");
        ++life[event.at("event").get<std::string>() + event.value("state", event.value("code", json(""))).dump()];
    }
    for (const char* name : {"loaded\"\"", "state1", "stop0", "state0", "main7", "unloaded\"\""})
        EXPECT_EQ(life[name], 2) << name;
}

TEST_F(TarnhostTest, printsTheEndOfALogAndFollowsItThroughARotation)
{
    const TemporaryFolder logs;
    const auto file = logs.path() / "sample.log";
    const auto write = [&](const std::u16string& text) {
        writeFile(file, std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2));
    };
    write(u"\uFEFFone\r\ntwo\r\nthree\r\n");
    EXPECT_EQ(call("log --lines 2 --file", file.string()).output, "two\nthree\n");
    EXPECT_EQ(call("--json log -n 1 --file", file.string()).output, "{\"line\":\"three\"}\n");

    const auto log = tarnhost("log --follow --file \"" + file.string() + "\"");
    const auto expect = [&](const std::string& text) {
        waitFor(folder.path(), text, [&] { return log.output() == text; });
    };
    expect("one\ntwo\nthree\n");
    std::filesystem::rename(file, logs.path() / "sample.1.log");
    write(u"\uFEFFfour\r\n");
    expect("one\ntwo\nthree\nfour\n");
}
