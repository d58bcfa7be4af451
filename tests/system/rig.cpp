#include "rig.h"

#include "host/agentdirectory.h"
#include "host/bootatom.h"
#include "host/directorywatch.h"
#include "store/protocol/errorcode.h"

#include <algorithm>

namespace rig {

using namespace std::chrono_literals;

constexpr auto deadline = 30s;

SystemTest::SystemTest()
{
    // The children inherit both: the log then lies in this test's folder.
    SetEnvironmentVariableW(L"ProgramData", (folder.path() / "ProgramData").c_str());
    SetEnvironmentVariableW(L"TARNHD_INSTANCE", vx::str::fromUtf8(instance).c_str());
    m_log.emplace(devhost::host::logLocation()).rewind();
    installAgent();
    script({nlohmann::json::object()});
    devhost::host::writeAgentDirectory(agentFolder);
    devhost::host::forgetBoot();
}

void SystemTest::TearDown()
{
    if (host && !m_hostStopped) {
        EXPECT_EQ(stopHost(), 0u);
    }
    if (!HasFailure())
        return;
    std::puts("the plug-in's log:");
    for (const std::string& line : log())
        std::puts(line.c_str());
    if (host)
        std::printf("the host said:\n%s%s\n", host->output().c_str(), host->errors().c_str());
}

support::ChildProcess SystemTest::start(const std::string& arguments, const std::string& outputName)
{
    const auto output = folder.path() / outputName;
    std::filesystem::create_directories(output);
    return {"tarnhost.exe", vx::str::fromUtf8(arguments), output};
}

void SystemTest::startHost(Wait wait, const std::string& options)
{
    const std::string storeOption = store ? "--no-store" : "--store \"" + (folder.path() / "store.json").string() + '"';
    const std::size_t started = logCount("Run processing");
    const std::size_t ends = logCount(agentEnd);
    host.emplace(start("run " + storeOption + " " + options, "host"));
    m_hostStopped = false;
    if (wait != Wait::No)
        waitForLog("Run processing", started + 1);
    if (wait == Wait::ForFirstScan)
        waitForAgentEnds(ends + 1);
}

void SystemTest::startStoreAlone()
{
    store.emplace(start("store --file \"" + (folder.path() / "store.json").string() + '"', "store"));
    ASSERT_TRUE(client.waitForServer(deadline));
}

unsigned long SystemTest::stopHost()
{
    m_hostStopped = true;
    command("stop");
    return host->wait().value_or(999);
}

unsigned long SystemTest::command(const std::string& arguments)
{
    const auto process = start(arguments, "command" + std::to_string(m_commands++));
    const unsigned long code = process.wait().value_or(999);
    std::printf("tarnhost %s: %lu %s%s\n", arguments.c_str(), code, process.output().c_str(), process.errors().c_str());
    return code;
}

void SystemTest::script(const std::vector<nlohmann::json>& runs)
{
    support::writeFile(agentFolder / "tarnag.script.json", nlohmann::json{{"runs", runs}}.dump());
}

void SystemTest::installAgent(const std::filesystem::path& where)
{
    std::filesystem::create_directories(where);
    // The agent finds the store's client library beside itself, as it would where it is installed.
    for (const char* file : {"tarnag.exe", "vx_qrl_meridia_32.dll"})
        std::filesystem::copy_file(
            support::programFolder() / file, where / file, std::filesystem::copy_options::overwrite_existing);
}

std::size_t SystemTest::agentStarts() const
{
    return devhost::host::readAgentStarts(agentFolder).size();
}

std::int64_t SystemTest::number(const std::string& key)
{
    const auto value = client.get(key);
    return value ? value->asInt64() : 0;
}

void SystemTest::scan(std::int64_t value)
{
    setNumber(scanStart, value);
    waitForValue(scanAck, Value::fromInt64(value));
}

void SystemTest::waitForValue(const std::string& key, const Value& value)
{
    waitFor(folder.path(), key + " = " + value.text(), [&] { return client.get(key) == value; });
}

void SystemTest::waitFor(
    const std::filesystem::path& changing, const std::string& what, const std::function<bool()>& condition)
{
    std::filesystem::create_directories(changing);
    devhost::host::DirectoryWatch watch(changing);
    const devhost::ipc::Signal never;
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            FAIL() << "never came: " << what;
        watch.wait(never, 250);
    }
}

const std::vector<std::string>& SystemTest::log()
{
    for (std::string& line : m_log->read())
        m_lines.push_back(std::move(line));
    return m_lines;
}

void SystemTest::waitForLog(const std::string& text, std::size_t count)
{
    waitFor(devhost::host::logLocation().parent_path(), std::to_string(count) + " times in the log: " + text,
        [&] { return logCount(text) >= count; });
}

std::size_t SystemTest::logCount(const std::string& text)
{
    const auto holds = [&](const std::string& line) { return line.find(text) != std::string::npos; };
    return static_cast<std::size_t>(std::ranges::count_if(log(), holds));
}

std::string SystemTest::lastLog(const std::string& text)
{
    std::string last;
    for (const std::string& line : log())
        if (const auto at = line.find(text); at != std::string::npos)
            last = line.substr(at);
    return last;
}

} // namespace rig
