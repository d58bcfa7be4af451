#include "rig.h"

#include "host/agentdirectory.h"
#include "host/bootatom.h"

#include <algorithm>
#include <windows.h>

namespace rig {

SystemTest::SystemTest()
{
    // The children inherit it: the log then lies in this test's folder.
    SetEnvironmentVariableW(L"ProgramData", (folder.path() / "ProgramData").c_str());
    m_log.emplace(logreading::logLocation()).rewind();
    installAgent();
    script({json::object()});
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

void SystemTest::startHost(Wait wait, const std::string& options)
{
    const std::string storeOption = store ? "--no-store" : "--store \"" + storeFile.string() + '"';
    const std::size_t started = logCount("Run processing");
    const std::size_t ends = logCount(agentEnd);
    host.emplace(tarnhost("run " + storeOption + " " + options));
    m_hostStopped = false;
    waitForLog("Run processing", started + 1);
    if (wait == Wait::ForFirstScan)
        waitForAgentEnds(ends + 1);
}

void SystemTest::startStoreAlone()
{
    store.emplace(tarnhost("store --file \"" + storeFile.string() + '"'));
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
    const auto process = tarnhost(arguments);
    const unsigned long code = process.wait().value_or(999);
    std::printf("tarnhost %s: %lu %s%s\n", arguments.c_str(), code, process.output().c_str(), process.errors().c_str());
    return code;
}

std::size_t SystemTest::agentStarts() const
{
    return devhost::host::readAgentStarts(agentFolder).size();
}

void SystemTest::scan(std::int64_t value)
{
    put(scanStart, value);
    waitForValue(scanAck, value);
}

void SystemTest::waitForValue(const vx::tarn::KeyRow& row, const json& value)
{
    waitFor(storeFile.parent_path(), keyOf(row) + " = " + value.dump(), [&] { return get(row) == value; });
}

const std::vector<std::string>& SystemTest::log()
{
    m_log->read([this](std::string_view line) { m_lines.emplace_back(line); });
    return m_lines;
}

void SystemTest::waitForLog(const std::string& text, std::size_t count)
{
    waitFor(logreading::logLocation().parent_path(), std::to_string(count) + " times in the log: " + text,
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
