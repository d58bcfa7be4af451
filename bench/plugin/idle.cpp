#include "idle.h"

#include "host/directorywatch.h"
#include "host/keycatalogue.h"
#include "host/loglocation.h"
#include "host/logreader.h"
#include "host/pluginsession.h"
#include "reading.h"
#include "store/client.h"
#include "store/server.h"
#include "threadswitches.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <windows.h>

namespace {

using namespace devhost;
using namespace std::chrono_literals;

constexpr auto deadline = 60s;
/// For the first tasks, which end at once as there is no agent.
constexpr DWORD settleMilliseconds = 5'000;
constexpr DWORD idleMilliseconds = 10'000;

void prepareStore(const std::wstring& instance)
{
    store::Client client(instance);
    client.set(std::string(host::keys::profile), store::Value::fromInt64(std::time(nullptr)));
    client.set(std::string(host::keys::enabled), store::Value::fromBool(true));
}

void waitForProcessing()
{
    host::LogReader log(host::logLocation());
    log.rewind();
    host::DirectoryWatch watch(host::logLocation().parent_path());
    const host::Signal never;
    for (const auto end = std::chrono::steady_clock::now() + deadline; std::chrono::steady_clock::now() < end;) {
        for (const std::string& line : log.read())
            if (line.find("Run processing") != std::string::npos)
                return;
        watch.wait(never, 1000);
    }
    throw std::runtime_error("the plug-in does not begin to process");
}

bool measure()
{
    const auto before = readThreadSwitches();
    const double computedBefore = processMilliseconds();
    Sleep(idleMilliseconds);
    const double computed = processMilliseconds() - computedBefore;
    const auto after = readThreadSwitches();
    printReading("idle, processor time in 10 s", "-", reading(computed, " ms"), "-", "", true);
    if (!before || !after)
        return printReading("idle, wake-ups (not told by this system)", "0", "unknown", "-", "0", false);
    const double wakeUps = static_cast<double>(after->count - before->count) * 1000 / idleMilliseconds;
    const std::string path = "idle, switches of " + std::to_string(after->threads) + " threads per second";
    return printReading(path, "0", reading(wakeUps, ""), "-", "0", after->count == before->count);
}

} // namespace

bool measureIdle(const std::filesystem::path& plugin, const std::filesystem::path& root)
{
    const std::wstring instance = L"bench-" + std::to_wstring(GetCurrentProcessId());
    _wputenv_s(L"TARNHD_INSTANCE", instance.c_str());
    SetEnvironmentVariableW(L"TARNHD_INSTANCE", instance.c_str());
    store::Server server((root / "store.json").wstring(), instance);
    server.start();
    prepareStore(instance);
    host::PluginSession session(plugin, "tarnhd", 36, {[](const std::string&, std::uint32_t) {}, [](std::uint32_t) {}});
    session.start();
    waitForProcessing();
    Sleep(settleMilliseconds);
    const bool holds = measure();
    session.stop();
    if (!session.waitForEnd(deadline))
        throw std::runtime_error("the plug-in does not end");
    return holds;
}
