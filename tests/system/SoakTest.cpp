#include "rig.h"

#include "support/footprint.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <random>
#include <thread>
#include <tuple>
#include <windows.h>

#include <psapi.h>

namespace rig {
namespace {

using namespace std::chrono_literals;
using devhost::store::Value;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

const auto& install = settings.remoteOperations.installUpdates;

/// A number of ./run soak; the few of a test run without it.
unsigned asked(const char* name, unsigned few)
{
    const char* const text = std::getenv((std::string("TARNHD_SOAK_") + name).c_str());
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : few;
}

milliseconds since(steady_clock::time_point begin)
{
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
}

/// What a part came to.
struct Figures {
    std::string part;
    unsigned times = 0, requests = 0, open = 0, stale = 0, deaf = 0;
    std::size_t twice = 0;
    milliseconds longestRequest{0}, longestStale{0};
};

/// What the host with the plug-in holds.
struct Held {
    std::ptrdiff_t handles, kilobytes;
};

/// Without recovery it shows what is lost; with it nothing may be.
class SoakTest : public SystemTest, public testing::WithParamInterface<bool> {
protected:
    SoakTest()
    {
        script({{{"durationMs", 100}}});
        startStoreAlone();
        put(settings.recovery.enabled, isOn());
        put(settings.scanning.automatic.pollingInterval, 1);
        put(devhost::host::keys::host.lastSuccessfulUpdateTimestamp, 1);
        // Stays, as the agent leaves it alone: whatever the scan has found is to be published.
        putQueue({"ALL"});
    }

    void SetUp() override
    {
        if (!isOn() && !std::getenv("TARNHD_SOAK_KILLS"))
            GTEST_SKIP() << "what is lost takes its time to show: see ./run soak";
    }
    static bool isOn() { return GetParam(); }
    /// How long something lost is waited for: with recovery the next tick of the scheduler serves what all else missed.
    static milliseconds patience() { return isOn() ? milliseconds(90s) : milliseconds(4s); }
    milliseconds randomly(unsigned most)
    {
        return milliseconds(std::uniform_int_distribution<unsigned>(0, most)(random));
    }
    void pause(unsigned most) { std::this_thread::sleep_for(randomly(most)); }

    /// Waits until the condition holds, and counts into `missing` when it does not within the patience.
    void await(unsigned& missing, milliseconds& longest, const std::function<bool()>& condition)
    {
        while (!condition() && since(begun) < patience())
            std::this_thread::sleep_for(5ms);
        missing += condition() ? 0 : 1;
        longest = std::max(longest, since(begun));
        if (isOn() && since(begun) > 2s)
            showWhatWasSlow();
    }
    void showWhatWasSlow()
    {
        std::printf("slow, round %u of %s: %lld ms\n", figures.times, figures.part.c_str(),
            static_cast<long long>(since(begun).count()));
        const auto& lines = log();
        for (auto line = lines.end() - std::min<std::ptrdiff_t>(40, std::ssize(lines)); line != lines.end(); ++line)
            std::printf("  %s\n", line->c_str());
    }
    void killAndRestartStore()
    {
        killStore();
        pause(300);
        startStoreAlone();
    }
    /// A scan and an installation in turn.
    void request()
    {
        isScan = !isScan;
        request(isScan ? scanStart : install.start);
    }
    void request(const vx::tarn::KeyRow& start)
    {
        ++figures.requests;
        put(start, ++value);
    }
    void expectAcknowledged()
    {
        await(figures.open, figures.longestRequest, [this] { return get(isScan ? scanAck : install.ack) == value; });
    }
    /// The list gets another length.
    void change()
    {
        listed = listed % 5 + 1;
        json list = json::array();
        for (std::size_t i = 0; i < listed; ++i)
            list.push_back({{"update_name", "KB" + std::to_string(i)}});
        put(missingUpdates, list);
    }
    void expectPublished()
    {
        await(figures.stale, figures.longestStale,
            [this] { return get(settings.currentStatus.patchesToInstall).size() == listed; });
    }
    void begin() { begun = steady_clock::now(); }

    /// Requests that were acknowledged more than once with nothing that told why.
    std::size_t countServedTwice()
    {
        std::map<std::string, int> times;
        for (const std::string& line : log())
            for (const auto& [text, kind, weight] :
                {std::tuple{"Update a scanning remote operation status: ", "scan ", 1},
                    {"Update a deployment remote operation status: ", "installation ", 1},
                    {"Recovery: the remote scan ", "scan ", -1},
                    {"Recovery: the remote installation ", "installation ", -1}})
                if (const auto at = line.find(text); at != std::string::npos)
                    times[kind + std::to_string(std::atoll(line.c_str() + at + std::string(text).size()))] += weight;
        return static_cast<std::size_t>(std::ranges::count_if(times, [](const auto& row) { return row.second > 1; }));
    }
    void report()
    {
        figures.twice = countServedTwice();
        std::printf("soak | %-18s | %-3s | %6u | %8u | %5u | %6zu | %6u | %5u | %10lld | %10lld\n",
            figures.part.c_str(), isOn() ? "on" : "off", figures.times, figures.requests, figures.open, figures.twice,
            figures.stale, figures.deaf, static_cast<long long>(figures.longestRequest.count()),
            static_cast<long long>(figures.longestStale.count()));
        std::fflush(stdout);
        if (!isOn())
            return;
        EXPECT_EQ(figures.open, 0u);
        EXPECT_EQ(figures.twice, 0u);
        EXPECT_EQ(figures.stale, 0u);
        EXPECT_EQ(figures.deaf, 0u);
    }
    Held held() const
    {
        const vx::KernelHandle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, host->id()));
        PROCESS_MEMORY_COUNTERS memory{};
        GetProcessMemoryInfo(process.get(), &memory, sizeof memory);
        return {support::openHandles(host->id()), static_cast<std::ptrdiff_t>(memory.PagefileUsage / 1024)};
    }

    Figures figures;
    std::mt19937 random{asked("SEED", 1)};
    std::int64_t value = 100'000;
    bool isScan = false;
    std::size_t listed = 0;
    steady_clock::time_point begun;
};

INSTANTIATE_TEST_SUITE_P(Recovery, SoakTest, testing::Bool(),
    [](const testing::TestParamInfo<bool>& row) { return row.param ? "on" : "off"; });

TEST_P(SoakTest, killsOfTheStore)
{
    figures.part = "kills";
    startHost();
    put(install.updatesToInstall, "ALL");
    for (const unsigned count = asked("KILLS", 2); figures.times < count; ++figures.times) {
        const bool isBefore = random() % 3 != 0;
        if (isBefore) {
            change();
            request();
            pause(120);
        }
        killAndRestartStore();
        if (!isBefore) {
            change();
            request();
        }
        // Of the writes each waits for the disk.
        begin();
        expectPublished();
        expectAcknowledged();
    }
    report();
}

TEST_P(SoakTest, killsDuringTheStart)
{
    figures.part = "kills at the start";
    for (const unsigned count = asked("STARTS", 1); figures.times < count; ++figures.times) {
        const std::size_t processing = logCount("Run processing"), answered = logCount("Setup action scheduler."),
                          started = logCount("LOGGING STARTED");
        unsigned none = 0;
        milliseconds unused{0};
        host.emplace(tarnhost("run --no-store --no-profile"));
        waitForLog("LOGGING STARTED", started + 1);
        pause(1000);
        killAndRestartStore();
        begin();
        await(none, unused, [&] { return logCount("Run processing") > processing; });
        request(scanStart);
        begin();
        isScan = true;
        expectAcknowledged();
        begin();
        put(settings.scanning.automatic.pollingInterval, 2 - figures.times % 2);
        await(figures.deaf, unused, [&] { return logCount("Setup action scheduler.") > answered; });
        EXPECT_EQ(stopHost(), 0u);
    }
    report();
}

TEST_P(SoakTest, pairsOfChanges)
{
    figures.part = "pairs of changes";
    startHost();
    for (const unsigned count = asked("CHANGES", 3); figures.times < count; ++figures.times) {
        change();
        pause(15);
        change();
        begin();
        expectPublished();
    }
    report();
}

TEST_P(SoakTest, pairsOfRequests)
{
    figures.part = "pairs of requests";
    script({{{"durationMs", 300}}});
    startHost();
    put(install.updatesToInstall, "ALL");
    for (const unsigned count = asked("REQUESTS", 1); figures.times < count; ++figures.times) {
        const std::size_t starts = logCount("Starting process ");
        client.set(keyOf(settings.scanning.excludeUpdatesByRule), Value::fromString(std::to_string(figures.times)));
        waitForLog("Starting process ", starts + 1);
        request(scanStart);
        request(install.start);
        begin();
        const auto scanned = value - 1;
        await(
            figures.open, figures.longestRequest, [&] { return get(scanAck) == scanned && get(install.ack) == value; });
    }
    report();
}

TEST_P(SoakTest, growsByNothing)
{
    if (!isOn())
        GTEST_SKIP() << "no other figures than the plug-in always has";
    figures.part = "growth";
    startHost();
    put(install.updatesToInstall, "ALL");
    const auto end = std::chrono::minutes(asked("MINUTES", 0)) + 3s;
    const unsigned pauseMs = asked("MINUTES", 0) ? 10'000 : 1'000;
    const auto started = steady_clock::now();
    std::optional<Held> first;
    for (; since(started) < end; ++figures.times) {
        killAndRestartStore();
        change();
        request();
        begin();
        expectPublished();
        expectAcknowledged();
        // The first rounds fill what is kept for good.
        if (!first && figures.times == 2)
            first = held();
        std::this_thread::sleep_for(milliseconds(pauseMs) - std::min(since(begun), milliseconds(pauseMs)));
    }
    const Held last = held();
    std::printf("soak | handles %td then %td, private memory %td KB then %td KB\n", first.value_or(last).handles,
        last.handles, first.value_or(last).kilobytes, last.kilobytes);
    report();
}

} // namespace
} // namespace rig
