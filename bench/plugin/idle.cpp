#include "idle.h"

#include "bench/stoprequest.h"
#include "host/pluginsession.h"
#include "keys/keycatalogue.h"
#include "logreading/directorywatch.h"
#include "logreading/logreader.h"
#include "observer.h"
#include "reading.h"
#include "store/client/client.h"
#include "store/server/server.h"
#include "threadswitches.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>
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
    // It would come while the service stopper polls.
    client.set(host::keyOf(host::keys::settings.scanning.automatic.scanningOnSystemStartup.enabled),
        store::Value::fromBool(false));
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

/// What happened between two readings.
struct Wakes {
    unsigned long long switches = 0; ///< of all threads
    std::set<unsigned long> threads; ///< that went to sleep or were put aside
};

Wakes between(const ThreadSwitches& before, const ThreadSwitches& after)
{
    Wakes wakes;
    for (const auto& [thread, count] : after) {
        const auto found = before.find(thread);
        const auto more = count - (found == before.end() ? 0 : found->second);
        wakes.switches += more;
        if (more != 0)
            wakes.threads.insert(thread);
    }
    return wakes;
}

/// Nothing where the system does not tell.
std::optional<Wakes> wakesIn(DWORD milliseconds)
{
    const auto before = readThreadSwitches();
    Sleep(milliseconds);
    const auto after = readThreadSwitches();
    return before && after ? std::optional(between(*before, *after)) : std::nullopt;
}

double perSecond(const Wakes& wakes)
{
    return static_cast<double>(wakes.switches) * 1000 / idleMilliseconds;
}

/// In how many seconds a thread wakes that is none of `known`. Seconds in a row count once: what a round does may lie
/// across two.
int countRounds(const std::set<unsigned long>& known, int seconds)
{
    int rounds = 0;
    bool wasAwake = false;
    for (int i = 0; i < seconds; ++i) {
        const auto wakes = wakesIn(1000);
        const bool isAwake = wakes && !std::ranges::includes(known, wakes->threads);
        rounds += isAwake && !wasAwake;
        wasAwake = isAwake;
    }
    return rounds;
}

/// The service stopper's rounds. Each wakes its thread and, as it reads settings, those that serve the store here.
bool measurePolling(const std::set<unsigned long>& idleThreads)
{
    // Two of its periods, and time for the second one's round.
    constexpr int seconds = 44;
    constexpr int named = seconds / 20;
    const bench::StopRequest request;
    Sleep(settleMilliseconds);
    const int rounds = countRounds(idleThreads, seconds);
    return printReading("service stopper, wake-ups in " + std::to_string(seconds) + " s", std::to_string(named),
        std::to_string(rounds), "-", "no other", rounds == named);
}

bool measure(const std::optional<Wakes>& floor)
{
    constexpr double reach = 1.1;
    const double computedBefore = processMilliseconds();
    const auto ours = wakesIn(idleMilliseconds);
    const double computed = processMilliseconds() - computedBefore;
    printReading("idle, processor time in 10 s", "-", reading(computed, " ms"), "-", "", true);
    if (!floor || !ours)
        return printReading("idle, wake-ups (not told by this system)", "0", "unknown", "-", "0", false);
    const double ratio = perSecond(*ours) / perSecond(*floor);
    const bool switchesHold = printReading("idle, thread switches per second", reading(perSecond(*floor), ""),
        reading(perSecond(*ours), ""), reading(ratio, "x"), "<= 1.10x", ratio <= reach);
    const auto floorThreads = floor->threads.size();
    const bool threadsHold = printReading("idle, threads that wake up", std::to_string(floorThreads),
        std::to_string(ours->threads.size()), "-", "no other", ours->threads.size() <= floorThreads);
    return measurePolling(ours->threads) && switchesHold && threadsHold;
}

std::optional<Wakes> measureFloor()
{
    const BarePoll poll;
    Sleep(settleMilliseconds);
    return wakesIn(idleMilliseconds);
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
    const auto floor = measureFloor();
    host::PluginSession session(plugin, "tarnhd", 36, {[](const std::string&, std::uint32_t) {}, [](std::uint32_t) {}});
    session.start();
    waitForProcessing();
    Sleep(settleMilliseconds);
    const bool idleHolds = measure(floor);
    const bool holds = measureHealth(plugin.parent_path()) && idleHolds;
    session.stop();
    if (!session.waitForEnd(deadline))
        throw std::runtime_error("the plug-in does not end");
    return holds;
}
