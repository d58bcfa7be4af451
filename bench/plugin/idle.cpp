#include "idle.h"

#include "logreading/directorywatch.h"
#include "logreading/logreader.h"
#include "host/pluginsession.h"
#include "keys/keycatalogue.h"
#include "reading.h"
#include "store/client/client.h"
#include "store/server/server.h"
#include "threadswitches.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>
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
    client.set(
        host::keyOf(host::keys::host.lastSuccessfulUpdateTimestamp), store::Value::fromInt64(std::time(nullptr)));
    client.set(host::keyOf(host::keys::settings.enabled), store::Value::fromBool(true));
}

void waitForProcessing()
{
    logreading::LogReader log(logreading::logLocation());
    log.rewind();
    logreading::DirectoryWatch watch(logreading::logLocation().parent_path());
    for (const auto end = std::chrono::steady_clock::now() + deadline; std::chrono::steady_clock::now() < end;) {
        bool processing = false;
        log.read([&](std::string_view line) { processing |= line.find("Run processing") != std::string_view::npos; });
        if (processing)
            return;
        watch.wait(nullptr, 1000);
    }
    throw std::runtime_error("the plug-in does not begin to process");
}

/// The one timed wake-up of an idle plug-in, bare: once a second, a look at a value that is not there.
class BarePoll {
public:
    BarePoll() : m_stop(CreateEventW(nullptr, TRUE, FALSE, nullptr)), m_thread([this] { run(); }) {}
    ~BarePoll()
    {
        SetEvent(m_stop);
        m_thread.join();
        CloseHandle(m_stop);
    }
    BarePoll(const BarePoll&) = delete;
    BarePoll& operator=(const BarePoll&) = delete;

private:
    void run()
    {
        HKEY key = nullptr;
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software", 0, KEY_QUERY_VALUE, &key);
        while (WaitForSingleObject(m_stop, 1000) == WAIT_TIMEOUT)
            RegQueryValueExW(key, L"finished", nullptr, nullptr, nullptr, nullptr);
        RegCloseKey(key);
    }

    HANDLE m_stop;
    std::thread m_thread;
};

/// Switches of all threads per second while nothing happens, and the threads; nothing where the system does not tell.
std::optional<std::pair<double, std::size_t>> measureSwitches()
{
    const auto before = readThreadSwitches();
    Sleep(idleMilliseconds);
    const auto after = readThreadSwitches();
    if (!before || !after)
        return std::nullopt;
    return std::pair(static_cast<double>(after->count - before->count) * 1000 / idleMilliseconds, after->threads);
}

bool measure(double floor)
{
    constexpr double reach = 1.1;
    const double computedBefore = processMilliseconds();
    const auto measured = measureSwitches();
    const double computed = processMilliseconds() - computedBefore;
    printReading("idle, processor time in 10 s", "-", reading(computed, " ms"), "-", "", true);
    if (!measured)
        return printReading("idle, wake-ups (not told by this system)", "0", "unknown", "-", "0", false);
    const auto [switches, threads] = *measured;
    return printReading("idle, switches of " + std::to_string(threads) + " threads per second", reading(floor, ""),
        reading(switches, ""), reading(switches / floor, "x"), "<= 1.10x", switches <= reach * floor);
}

double measureFloor()
{
    const BarePoll poll;
    Sleep(settleMilliseconds);
    const auto measured = measureSwitches();
    return measured ? measured->first : 0;
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
    const double floor = measureFloor();
    host::PluginSession session(plugin, "tarnhd", 36, {[](const std::string&, std::uint32_t) {}, [](std::uint32_t) {}});
    session.start();
    waitForProcessing();
    Sleep(settleMilliseconds);
    const bool holds = measure(floor);
    session.stop();
    if (!session.waitForEnd(deadline))
        throw std::runtime_error("the plug-in does not end");
    return holds;
}
