#include "childprocess.h"
#include "host/directorywatch.h"
#include "store/client/client.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <windows.h>

namespace {

namespace store = devhost::store;
using nlohmann::json;
using support::ChildProcess;
using testing::HasSubstr;
using namespace std::chrono_literals;

/// Runs tarnhost.exe on an instance and with a store file of its own.
class TarnhostTest : public testing::Test {
protected:
    struct Outcome {
        unsigned long code;
        std::string output;
        std::string errors;
    };
    struct Mistake {
        const wchar_t* arguments;
        unsigned long code;
        const char* line;
    };

    ChildProcess start(const std::wstring& arguments) const
    {
        return {"tarnhost.exe", L"--instance " + instance + L" " + arguments, folder.path()};
    }

    Outcome call(const std::wstring& arguments) const
    {
        const auto child = start(arguments);
        const auto code = child.wait();
        EXPECT_TRUE(code.has_value()) << "does not end";
        return {code.value_or(999), child.output(), child.errors()};
    }

    /// A host on the recording plug-in; up when this returns.
    ChildProcess startHost(const std::wstring& options = {}) const
    {
        auto host = start(L"--json run --plugin \"" + (support::programFolder() / "host-test-plugin.dll").native() +
                          L"\" --store \"" + (folder.path() / "store.json").native() + L"\" " + options);
        EXPECT_EQ(call(L"status --wait 60").code, 0u) << host.errors();
        return host;
    }

    void expectOneLineEach(const std::vector<Mistake>& mistakes) const
    {
        for (const auto& mistake : mistakes) {
            SCOPED_TRACE(mistake.line);
            const auto outcome = call(mistake.arguments);
            EXPECT_EQ(outcome.code, mistake.code);
            EXPECT_THAT(outcome.errors, HasSubstr(mistake.line));
            EXPECT_THAT(outcome.errors, testing::StartsWith("tarnhost: "));
            EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome.errors;
        }
    }

    support::TemporaryFolder folder;
    const std::wstring instance = folder.path().filename().wstring();
};

} // namespace

TEST_F(TarnhostTest, answersMistakesWithOneLineAndACode)
{
    expectOneLineEach({
        {L"", 2, "subcommand is required"},
        {L"frobnicate", 2, "frobnicate"},
        {L"run --size 30", 2, "--size"},
        {L"run --store a --no-store", 2, "--no-store"},
        {L"get", 2, "KEY"},
        {L"set some.key 1", 2, "unknown key some.key: give its type with --type"},
        {L"set windows.tarnpatch.enabled maybe", 2, "maybe"},
        {L"set windows.tarnpatch.installation.automatic.hour 9999999999", 2, "9999999999"},
        {L"scan --wait 0", 2, "--wait"},
        {L"outage sometimes", 2, "\"sometimes\" is neither on, off nor a number of seconds"},
        {L"fault frob 3", 2, "frob"},
        {L"fault get", 2, "give the error CODE"},
        {L"run --no-store --agent-dir C:\\missing", 2, "there is no folder C:\\missing"},
        {L"get windows.tarnpatch.enabled", 3, "unreachable"},
        {L"scan --wait 5", 3, "unreachable"},
        {L"watch", 3, "unreachable"},
        {L"stop", 3, "no host of the instance"},
        {L"resume-event", 3, "no host of the instance"},
        {L"run --no-store --plugin C:\\missing.dll", 1, "cannot load C:\\missing.dll"},
        {L"log --file C:\\missing\\a.log", 1, "there is no log C:\\missing\\a.log"},
    });
    EXPECT_EQ(call(L"status").code, 3u);
    for (const auto* help : {L"--help", L"set --help"})
        EXPECT_THAT(call(help).output, HasSubstr("Exit codes:"));
}

TEST_F(TarnhostTest, passesOnWhatARunningHostAndItsStoreRefuse)
{
    const auto host = startHost(L"--size 28 --no-profile");
    EXPECT_EQ(call(L"set other.key x --type string").code, 0u);
    expectOneLineEach({
        {L"run", 5, "already running"},
        {L"store", 1, "another server is running; stop it or choose another instance"},
        {L"resume-event", 1, "tarnhost: this size of plug-in record has no callback for a resume\n"},
        {L"get windows.tarnpatch.enabled", 1, "no value for the key windows.tarnpatch.enabled"},
        {L"delete no.key", 1, "no value for the key no.key"},
        {L"set other.key 5 --type int32", 1, "other.key: Invalid setting type"},
        {L"scan --wait 1", 4, "no acknowledgement within 1 seconds"},
    });
    EXPECT_EQ(call(L"get windows.tarnpatch.remote_operations.scan_for_updates.start").output, "1\n");
    call(L"stop");
}

TEST_F(TarnhostTest, runsThePluginUntilItIsStopped)
{
    const auto host = startHost();
    EXPECT_EQ(call(L"resume-event").code, 0u);
    EXPECT_EQ(call(L"session-event 5 2").code, 0u);
    EXPECT_EQ(call(L"restart").code, 0u);
    const auto status = json::parse(call(L"--json status").output);
    EXPECT_EQ(status.at("host").at("size"), 36);
    EXPECT_EQ(status.at("store").at("profile"), 1);

    // The plug-in's own result is not 0, so the host reports a failure.
    EXPECT_EQ(call(L"stop").code, 1u);
    EXPECT_EQ(host.wait(), 1u);
    std::vector<std::string> life;
    for (const auto& event : support::parseLines(host.output())) {
        const std::string name = event.at("event");
        EXPECT_NE(event.value("warning", ""), "plug-in still loaded");
        if (name == "state")
            life.push_back("state " + event.at("state").dump());
        else if (name == "main")
            life.push_back("main " + event.at("code").dump());
        else if (name == "loaded" || name == "stop" || name == "unloaded")
            life.push_back(name);
    }
    for (const char* name : {"loaded", "state 1", "stop", "state 0", "main 7", "unloaded"})
        EXPECT_EQ(std::ranges::count(life, name), 2) << name;
}

TEST_F(TarnhostTest, readsAndWritesTheRunningStore)
{
    const auto host = startHost(L"--no-profile");
    EXPECT_EQ(call(L"set windows.tarnpatch.installation.reboot.force_in_seconds -1").code, 0u);
    EXPECT_EQ(call(L"get windows.tarnpatch.installation.reboot.force_in_seconds").output, "-1\n");
    EXPECT_EQ(call(L"set other.key \"a b\" --type string").code, 0u);
    EXPECT_EQ(json::parse(call(L"--json keys other.").output),
        json({{"key", "other.key"}, {"type", "string"}, {"value", "a b"}}));
    EXPECT_EQ(call(L"delete other.key").code, 0u);
    EXPECT_EQ(call(L"get other.key").code, 1u);
    EXPECT_EQ(json::parse(call(L"--json status").output).at("store").at("profile"), nullptr);
    call(L"stop");
}

TEST_F(TarnhostTest, endsAScanWithItsAcknowledgement)
{
    const auto host = startHost();
    store::Client values(instance);
    store::Client plugin(instance);
    plugin.subscribe("windows.tarnpatch.remote_operations.scan_for_updates.start", [&](const store::Change& change) {
        values.set("windows.tarnpatch.remote_operations.scan_for_updates.ack", *values.get(change.name));
    });
    const auto scan = call(L"--json scan --wait 60");
    EXPECT_EQ(scan.code, 0u) << scan.errors;
    EXPECT_THAT(scan.output, HasSubstr("\"event\":\"acknowledged\""));
    call(L"stop");
}

TEST_F(TarnhostTest, printsTheEndOfALogAndFollowsItThroughARotation)
{
    const support::TemporaryFolder logs;
    const auto file = logs.path() / "sample.log";
    const auto write = [&](const std::u16string& text) {
        support::writeFile(file, std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2));
    };
    write(u"\uFEFFone\r\ntwo\r\nthree\r\n");
    const auto option = L"log --file \"" + file.native() + L"\"";
    EXPECT_EQ(call(option + L" --lines 2").output, "two\nthree\n");
    EXPECT_EQ(call(L"--json " + option + L" -n 1").output, "{\"line\":\"three\"}\n");

    devhost::host::DirectoryWatch changes(folder.path());
    const auto log = start(option + L" --follow");
    const devhost::host::Signal never;
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
