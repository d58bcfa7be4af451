#include "rig.h"

#include "host/agentdirectory.h"
#include "host/bootatom.h"
#include "host/directorywatch.h"
#include "host/loglocation.h"
#include "store/errorcode.h"
#include "vxtl/str.h"

#include <windows.h>

#include <atomic>

namespace rig {

using namespace std::chrono_literals;

namespace {

constexpr auto deadline = 30s;

std::string uniqueInstance()
{
    static std::atomic<unsigned> number = 0;
    return "system-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(number++);
}

} // namespace

Gate::Gate(const std::string& name)
    : m_name(name + "-" + std::to_string(GetCurrentProcessId())),
      m_started(CreateEventA(nullptr, TRUE, FALSE, (m_name + "-started").c_str())),
      m_release(CreateEventA(nullptr, TRUE, FALSE, (m_name + "-release").c_str()))
{}

nlohmann::json Gate::run() const
{
    return {{"startedEvent", m_name + "-started"}, {"waitForEvent", m_name + "-release"}};
}

bool Gate::waitUntilStarted() const
{
    return WaitForSingleObject(m_started.get(), 30'000) == WAIT_OBJECT_0;
}

void Gate::release() const
{
    SetEvent(m_release.get());
}

SystemTest::SystemTest() : instance(uniqueInstance()), client(vx::str::fromUtf8(instance))
{
    // The children inherit both: the log then lies in this test's folder.
    SetEnvironmentVariableW(L"ProgramData", (folder.path() / "ProgramData").c_str());
    SetEnvironmentVariableW(L"TARNHD_INSTANCE", vx::str::fromUtf8(instance).c_str());
    m_log.emplace(devhost::host::logLocation()).rewind();
    std::filesystem::create_directories(folder.path() / "agent");
    installAgent();
    script({nlohmann::json::object()});
    devhost::host::writeAgentDirectory(folder.path() / "agent");
    devhost::host::forgetBoot();
}

SystemTest::~SystemTest()
{
    if (HasFailure()) {
        std::string text;
        for (const std::string& line : log())
            text += line + '\n';
        std::printf("the plug-in's log:\n%s\n", text.c_str());
        if (host)
            std::printf("the host said:\n%s%s\n", host->output().c_str(), host->errors().c_str());
    }
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
    const std::size_t ends = logCount("Process finished with return code: ");
    host.emplace(start("run " + storeOption + " " + options, "host"));
    if (wait == Wait::No)
        return;
    waitForLog("Run processing", started + 1);
    if (wait == Wait::ForFirstScan)
        waitForLog("Process finished with return code: ", ends + 1);
}

void SystemTest::startStoreAlone()
{
    store.emplace(start("store --file \"" + (folder.path() / "store.json").string() + '"', "store"));
    ASSERT_TRUE(client.waitForServer(deadline));
}

void SystemTest::killStore()
{
    store.reset();
}

unsigned long SystemTest::stopHost()
{
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
    support::writeFile(folder.path() / "agent" / "tarnag.script.json", nlohmann::json{{"runs", runs}}.dump());
}

void SystemTest::installAgent()
{
    // The agent finds the store's client library beside itself, as it would where it is installed.
    for (const char* file : {"tarnag.exe", "vx_qrl_meridia_32.dll"})
        std::filesystem::copy_file(support::programFolder() / file, folder.path() / "agent" / file,
            std::filesystem::copy_options::overwrite_existing);
}

void SystemTest::removeAgent()
{
    std::filesystem::remove(folder.path() / "agent" / "tarnag.exe");
}

std::size_t SystemTest::agentStarts() const
{
    return devhost::host::readAgentStarts(folder.path() / "agent").size();
}

void SystemTest::waitForAgentEnds(std::size_t count)
{
    waitForLog("Process finished with return code: ", count);
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
    const devhost::host::Signal never;
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
    std::size_t count = 0;
    for (const std::string& line : log())
        count += line.find(text) != std::string::npos;
    return count;
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
