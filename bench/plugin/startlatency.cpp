#include "startlatency.h"

#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "common/process/iprocess.h"
#include "observer.h"
#include "reading.h"
#include "settings-api/settings.h"
#include "tarnhd/manager/tarnpatchmanager.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <thread>
#include <vector>
#include <windows.h>

namespace {

using vx::SharedHandle;

constexpr int warmUp = 10;
constexpr int batches = 5; ///< a single one's p99 swings by a third with what else the machine does
constexpr int requests = 500;
constexpr int observedRequests = 150; ///< of a batch
constexpr DWORD deadline = 30'000;
/// Lets the manager's thread come to rest in its wait, as it is when a request comes.
constexpr DWORD restMilliseconds = 5;

SharedHandle makeEvent(bool signalled)
{
    return std::make_shared<vx::KernelHandle>(CreateEventW(nullptr, signalled, signalled, nullptr));
}

/// A store in memory that is empty and forgets what is written; tells when the round's last value is.
class EmptyStore final : public vx::settings::details::SettingsImpl {
public:
    explicit EmptyStore(SharedHandle roundEnded) : m_roundEnded(std::move(roundEnded)) {}
    bool getBoolValue(const std::wstring&) override { return false; }
    std::int32_t getInt32Value(const std::wstring&) override { return 0; }
    std::int64_t getInt64Value(const std::wstring&) override { return 0; }
    double getDoubleValue(const std::wstring&) override { return 0; }
    std::wstring getStringValue(const std::wstring&) override { return {}; }
    nlohmann::json getJsonValue(const std::wstring&) override { return {}; }
    void setBoolValue(const std::wstring&, bool) override {}
    void setInt32Value(const std::wstring&, std::int32_t) override {}
    void setInt64Value(const std::wstring&, std::int64_t) override { SetEvent(m_roundEnded->get()); }
    void setDoubleValue(const std::wstring&, double) override {}
    void setStringValue(const std::wstring&, const std::wstring&) override {}
    void setJsonValue(const std::wstring&, const nlohmann::json&) override {}
    vx::settings::SubscriptionId subscribeForChanges(const std::wstring&, const vx::settings::ChangeCallback&) override
    {
        return 0;
    }
    void unsubscribeFromChanges(vx::settings::SubscriptionId) override {}

private:
    const SharedHandle m_roundEnded;
};

/// Takes the time at which the system would be asked for a process, and is over at once.
class TimedProcess : public vx::tarn::common::IProcess {
public:
    TimedProcess(LARGE_INTEGER& started, const SharedHandle& ended) : m_started(started), m_handle(ended) {}
    bool start(const std::wstring&, unsigned long, vx::process::Redirect, void*) override { return false; }
    bool start(const std::wstring&, const std::wstring&, const vx::process::Credentials&) override
    {
        return QueryPerformanceCounter(&m_started) != 0;
    }
    void wait() override {}
    std::uint32_t getReturnCode() override { return 0; }
    const SharedHandle& getHandle() override { return m_handle; }

private:
    LARGE_INTEGER& m_started;
    const SharedHandle m_handle;
};

class TimedFactory : public vx::tarn::common::CommonFactory {
public:
    std::shared_ptr<vx::tarn::common::IProcess> createProcess() override
    {
        return std::make_shared<TimedProcess>(started, m_ended);
    }
    LARGE_INTEGER started{};

private:
    const SharedHandle m_ended = makeEvent(true);
};

/// Microseconds from each request to the `reached` that it leads to, in ascending order.
template <typename Request>
std::vector<double> collect(const LARGE_INTEGER& reached, int count, Request request)
{
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    std::vector<double> times;
    for (int i = -warmUp; i < count; ++i) {
        Sleep(restMilliseconds);
        LARGE_INTEGER requested;
        QueryPerformanceCounter(&requested);
        request();
        if (i >= 0)
            times.push_back(static_cast<double>(reached.QuadPart - requested.QuadPart) * 1e6 /
                            static_cast<double>(frequency.QuadPart));
    }
    std::ranges::sort(times);
    return times;
}

std::vector<double> measure(int count)
{
    const SharedHandle roundEnded = makeEvent(false);
    TimedFactory factory;
    vx::tarn::TarnpatchManager manager(
        std::make_shared<vx::settings::Settings>(std::make_shared<EmptyStore>(roundEnded)), &factory,
        std::chrono::seconds(1));
    if (!manager.start())
        throw std::runtime_error("the agent manager does not start");
    const auto startEvent = vx::tarn::common::openEvent(
        EVENT_MODIFY_STATE | SYNCHRONIZE, L"Global\\ScanEvent{450C4D2D-AE20-440a-9AAA-F770900831AD}", false);
    auto times = collect(factory.started, count, [&] {
        startEvent->set();
        if (WaitForSingleObject(roundEnded->get(), deadline) != WAIT_OBJECT_0)
            throw std::runtime_error("a requested start never came");
    });
    manager.stop();
    return times;
}

/// What the machine itself takes to wake a waiting thread: shows how much of the tail is not the manager's.
std::vector<double> measureBareWakeUp(int count)
{
    const SharedHandle request = makeEvent(false);
    const SharedHandle answer = makeEvent(false);
    LARGE_INTEGER woken{};
    bool stop = false;
    std::thread waiter([&] {
        while (WaitForSingleObject(request->get(), INFINITE) == WAIT_OBJECT_0 && !stop) {
            QueryPerformanceCounter(&woken);
            SetEvent(answer->get());
        }
    });
    const std::vector<double> times = collect(woken, count, [&] {
        SetEvent(request->get());
        WaitForSingleObject(answer->get(), deadline);
    });
    stop = true;
    SetEvent(request->get());
    waiter.join();
    return times;
}

using Batches = std::vector<std::vector<double>>;

/// The median of the batches' percentiles.
double percentile(const Batches& all, std::size_t percent)
{
    std::vector<double> found;
    for (const auto& times : all)
        found.push_back(times[times.size() * percent / 100]);
    std::ranges::sort(found);
    return found[found.size() / 2];
}

double largest(const Batches& all)
{
    double most = 0;
    for (const auto& times : all)
        most = std::max(most, times.back());
    return most;
}

/// Medians of one batch each.
struct Medians {
    double bare;
    double ours;
};

Medians measureMedians()
{
    const auto bare = measureBareWakeUp(observedRequests), ours = measure(observedRequests);
    return {bare[bare.size() / 2], ours[ours.size() / 2]};
}

double middle(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

} // namespace

bool measureStartLatency()
{
    Batches floor;
    Batches ours;
    for (int i = 0; i < batches; ++i) {
        floor.push_back(measureBareWakeUp(requests));
        ours.push_back(measure(requests));
    }
    const auto row = [](const char* path, double bare, double time, const char* reach, bool holds) {
        return printReading(path, reading(bare, " us"), reading(time, " us"), reading(time / bare, "x"), reach, holds);
    };
    const double p99 = percentile(ours, 99);
    row("start event set to process made, p50 of 500", percentile(floor, 50), percentile(ours, 50), "", true);
    const bool holds =
        row("start event set to process made, p99 of 500", percentile(floor, 99), p99, "< 1 ms", p99 < 1000);
    row("start event set to process made, max of 2500", largest(floor), largest(ours), "", true);
    return holds;
}

bool measureObservedStart(const std::filesystem::path& folder)
{
    std::vector<double> bareChanges, changes, ratios;
    for (int i = 0; i < batches; ++i) {
        const auto alone = measureMedians();
        const Observer observer(folder);
        const auto observed = measureMedians();
        bareChanges.push_back(observed.bare / alone.bare);
        changes.push_back(observed.ours / alone.ours);
        ratios.push_back(changes.back() / bareChanges.back());
    }
    const auto [least, most] = std::ranges::minmax(ratios);
    const auto spread = reading(least, "") + " to " + reading(most, "");
    return printReading("the p50 while tarnctl health runs, change", reading(middle(bareChanges), "x"),
        reading(middle(changes), "x"), reading(middle(ratios), "x"), spread, least <= 1);
}
