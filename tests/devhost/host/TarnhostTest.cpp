#include "childprocess.h"
#include "host/directorywatch.h"
#include "store/client.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>
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

    std::unique_ptr<ChildProcess> start(const std::wstring& arguments)
    {
        return std::make_unique<ChildProcess>(L"\"" + (support::programFolder() / "tarnhost.exe").native() +
                                                  L"\" --instance " + instance + L" " + arguments,
            folder.path());
    }

    Outcome call(const std::wstring& arguments)
    {
        const auto child = start(arguments);
        const auto code = child->wait();
        EXPECT_TRUE(code.has_value()) << "does not end";
        return {code.value_or(999), child->output(), child->errors()};
    }

    /// A host on the recording plug-in; up when this returns.
    std::unique_ptr<ChildProcess> startHost(const std::wstring& options = {})
    {
        auto host = start(L"--json run --plugin \"" + (support::programFolder() / "host-test-plugin.dll").native() +
                          L"\" --store \"" + (folder.path() / "store.json").native() + L"\" " + options);
        EXPECT_EQ(call(L"status --wait 60").code, 0u) << host->errors();
        return host;
    }

    static std::vector<json> eventsOf(const ChildProcess& host)
    {
        std::vector<json> events;
        std::istringstream lines(host.output());
        for (std::string line; std::getline(lines, line);)
            events.push_back(json::parse(line));
        return events;
    }

    const std::wstring instance = L"test" + std::to_wstring(GetCurrentProcessId());
    support::TemporaryFolder folder;
};

} // namespace

TEST_F(TarnhostTest, answersMistakesWithOneLineAndACode)
{
    const struct {
        const wchar_t* arguments;
        unsigned long code;
        const char* line;
    } rows[] = {
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
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const auto outcome = call(row.arguments);
        EXPECT_EQ(outcome.code, row.code);
        EXPECT_THAT(outcome.errors, HasSubstr(row.line));
        EXPECT_THAT(outcome.errors, testing::StartsWith("tarnhost: "));
        EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome.errors;
    }
}

TEST_F(TarnhostTest, explainsItself)
{
    for (const auto* arguments : {L"--help", L"run --help", L"set --help"}) {
        const auto outcome = call(arguments);
        EXPECT_EQ(outcome.code, 0u);
        EXPECT_THAT(outcome.output, HasSubstr("Exit codes:"));
    }
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
    EXPECT_EQ(host->wait(), 1u);
    std::vector<std::string> names;
    for (const auto& event : eventsOf(*host))
        if (event.at("event") != "change" && event.at("event") != "warning")
            names.push_back(event.at("event"));
    const std::vector<std::string> life{"loaded", "state", "stop", "state", "main", "unloaded"};
    EXPECT_THAT(names, testing::IsSupersetOf(life));
    EXPECT_EQ(std::ranges::count(names, "loaded"), 2);
    EXPECT_EQ(std::ranges::count(names, "unloaded"), 2);
}

TEST_F(TarnhostTest, passesOnWhatTheHostRefuses)
{
    const auto host = startHost(L"--size 28");
    const auto outcome = call(L"resume-event");
    EXPECT_EQ(outcome.code, 1u);
    EXPECT_EQ(outcome.errors, "tarnhost: this size of plug-in record has no callback for a resume\n");
    call(L"stop");
}

TEST_F(TarnhostTest, refusesASecondHostAndASecondStore)
{
    const auto host = startHost();
    const auto second = call(L"run");
    EXPECT_EQ(second.code, 5u);
    EXPECT_THAT(second.errors, HasSubstr("already running"));
    const auto store = call(L"store");
    EXPECT_EQ(store.code, 1u);
    EXPECT_EQ(std::ranges::count(store.errors, '\n'), 1) << store.errors;
    call(L"stop");
}

TEST_F(TarnhostTest, readsAndWritesTheRunningStore)
{
    const auto host = startHost(L"--no-profile");
    EXPECT_EQ(call(L"get windows.tarnpatch.enabled").code, 1u);
    EXPECT_EQ(call(L"set windows.tarnpatch.installation.reboot.force_in_seconds -1").code, 0u);
    EXPECT_EQ(call(L"get windows.tarnpatch.installation.reboot.force_in_seconds").output, "-1\n");
    EXPECT_EQ(call(L"set other.key \"a b\" --type string").code, 0u);
    EXPECT_EQ(call(L"set other.key 5 --type int32").code, 1u) << "the value has another type";
    const auto listed = json::parse(call(L"--json keys other.").output);
    EXPECT_EQ(listed, json({{"key", "other.key"}, {"type", "string"}, {"value", "a b"}}));
    EXPECT_EQ(call(L"delete other.key").code, 0u);
    EXPECT_EQ(call(L"delete other.key").code, 1u);
    EXPECT_EQ(json::parse(call(L"--json status").output).at("store").at("profile"), nullptr);
    call(L"stop");
}

TEST_F(TarnhostTest, timesOutWhenNobodyAcknowledges)
{
    const auto host = startHost();
    const auto outcome = call(L"scan --wait 1");
    EXPECT_EQ(outcome.code, 4u);
    EXPECT_THAT(outcome.errors, HasSubstr("no acknowledgement within 1 seconds"));
    EXPECT_EQ(call(L"get windows.tarnpatch.remote_operations.scan_for_updates.start").output, "1\n");
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

TEST_F(TarnhostTest, printsTheEndOfALog)
{
    const auto file = folder.path() / "sample.log";
    const std::u16string text = u"\xFEFF"
                                u"one\r\ntwo\r\nthree\r\n";
    support::writeFile(file, std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2));
    const auto option = L"log --file \"" + file.native() + L"\"";
    EXPECT_EQ(call(option + L" --lines 2").output, "two\nthree\n");
    EXPECT_EQ(call(L"--json " + option + L" -n 1").output, "{\"line\":\"three\"}\n");
}

TEST_F(TarnhostTest, followsALogThroughARotation)
{
    const auto utf16 = [](const std::u16string& text) {
        return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t));
    };
    const support::TemporaryFolder logs;
    const auto file = logs.path() / "sample.log";
    support::writeFile(file, utf16(u"\xFEFF"
                                   u"one\r\n"));
    devhost::host::DirectoryWatch changes(folder.path());
    const auto log = start(L"log --follow --file \"" + file.native() + L"\"");
    const devhost::host::Signal never;
    const auto expect = [&](const std::string& text) {
        const auto deadline = std::chrono::steady_clock::now() + 60s;
        while (log->output() != text && std::chrono::steady_clock::now() < deadline)
            changes.wait(never, 1000);
        EXPECT_EQ(log->output(), text);
    };
    expect("one\n");
    std::filesystem::rename(file, logs.path() / "sample.1.log");
    support::writeFile(file, utf16(u"\xFEFF"
                                   u"two\r\n"));
    expect("one\ntwo\n");
}
