#include "qrl-probe/probe.h"

#include "qrl-probe/memory.h"
#include "qrl-probe/reportcall.h"
#include "vxtl/guarded.h"

#include <utility>
#include <windows.h>

namespace tools::qrlprobe {

namespace {

using vx::guarded;
using vx::qrl::pluginAPI;

constexpr std::uint32_t done = 0;
constexpr std::uint32_t failed = 1;
constexpr std::uint32_t stateStopped = 0;
constexpr std::uint32_t stateStarted = 1;
constexpr std::chrono::seconds unloadTimeout(10);
constexpr DWORD returnTimeMs = 100;

std::size_t readableOf(const pluginAPI* record)
{
    return memory::extent(record, sizeof(*record), memory::Access::Read);
}

} // namespace

/// A call of the host, from its arrival to its return. Its alignment has whoever makes one realign the stack: over one
/// that is not even divisible by 4, the system's functions fail.
class alignas(16) Probe::Visit {
public:
    Visit(Probe& probe, Call call, std::uintptr_t stack, const pluginAPI* record) : m_probe(probe)
    {
        m_probe.change([&](HostLife& life) {
            life.arrive({call, GetCurrentThreadId(), stack, record, readableOf(record)});
        });
    }
    ~Visit()
    {
        guarded([this] { m_probe.change([](HostLife& life) { life.leave(); }); });
    }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;

private:
    Probe& m_probe;
};

template <typename Change>
void Probe::change(Change change)
{
    const std::lock_guard lock(m_mutex);
    change(m_life);
    publish();
    m_changed.notify_all();
}

std::uint32_t Probe::initialize(
    std::uintptr_t stack, const char* name, vx::qrl::hosterAPI* hoster, pluginAPI* record) noexcept
{
    const bool isDone = guarded([&] {
        const Visit visit(*this, Call::Initialize, stack, record);
        const auto introduction = introductionOf(name, hoster, record);
        bool isUsable = false;
        change([&](HostLife& life) { isUsable = life.introduce(introduction); });
        if (!isUsable)
            return false;
        m_name = introduction.name.value_or("");
        m_hoster = introduction.isReportCode ? hoster : nullptr;
        m_report = m_hoster ? hoster->reportPluginState : nullptr;
        m_record = record;
        fill(*record);
        change([&](HostLife& life) { life.recordFilled(*record); });
        return true;
    });
    return isDone ? done : failed;
}

void Probe::fill(pluginAPI& record)
{
    record.pluginContextData = this;
    record.pluginInitialize = m_callbacks.initialize;
    record.pluginMain = m_callbacks.main;
    record.pluginStop = m_callbacks.stop;
    if (record.size == 0 || record.size == 24)
        record.onResumeFromLowPowerMode = m_callbacks.onResumeFromLowPowerMode;
    if (record.size >= 32) {
        record.onResumeFromLowPowerMode = nullptr;
        record.reservedCallback = nullptr;
        record.onPowerEvent = m_callbacks.onPowerEvent;
    }
    if (record.size >= 36)
        record.onSessionChangeEvent = m_callbacks.onSessionChangeEvent;
}

std::uint32_t Probe::main(std::uintptr_t stack, pluginAPI* record) noexcept
{
    const bool isDone = guarded([&] {
        const Visit visit(*this, Call::Main, stack, record);
        const auto apartment = currentApartment();
        bool isFirst = false;
        change([&](HostLife& life) { isFirst = life.beginMain(apartment); });
        if (isFirst)
            run();
        return isFirst;
    });
    return isDone ? done : failed;
}

void Probe::run()
{
    tellHost(stateStarted);
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_life.isStopped() || m_isLetGo; });
        // The host has unloaded the library: its report function may be the next to go.
        if (m_isLetGo)
            return;
    }
    tellHost(stateStopped);
    change([this](HostLife& life) {
        life.mainEnded(readableOf(m_record));
        if (auto* const context = &m_record->pluginContextData;
            memory::extent(context, sizeof *context, memory::Access::Write) == sizeof *context)
            *context = nullptr;
    });
}

void Probe::tellHost(std::uint32_t state)
{
    if (!m_hoster)
        return;
    // One on the stack of a function that has returned would be overwritten by now.
    if (memory::extent(m_hoster, sizeof(*m_hoster), memory::Access::Read) != sizeof(*m_hoster) ||
        m_hoster->reportPluginState != m_report)
        change([](HostLife& life) { life.hosterChanged(); });
    const auto taken = callReport(m_report, m_name.c_str(), state);
    change([=](HostLife& life) { life.reported(taken); });
}

std::uint32_t Probe::stop(std::uintptr_t stack, pluginAPI* record) noexcept
{
    return guarded([&] { const Visit visit(*this, Call::Stop, stack, record); }) ? done : failed;
}

void Probe::event(Call call, std::uintptr_t stack, pluginAPI* record) noexcept
{
    guarded([&] { const Visit visit(*this, call, stack, record); });
}

bool Probe::unload() noexcept
{
    bool wasFree = false;
    guarded([&] {
        std::unique_lock lock(m_mutex);
        wasFree = !m_life.isInside();
        m_life.unloading();
        publish();
        showInDebugger(m_life.findings().verdict());
        m_isLetGo = true;
        m_changed.notify_all();
        m_changed.waitFor(lock, unloadTimeout, [this] { return !m_life.isInside(); });
    });
    // Whoever was inside still has some instructions of the library ahead, and nothing to tell their end by.
    if (!wasFree)
        Sleep(returnTimeMs);
    return wasFree;
}

void Probe::endProcess() noexcept
{
    // A thread that is no more may have had the mutex; the report then stays as it is.
    if (!m_mutex.try_lock())
        return;
    guarded([&] {
        m_life.processEnding();
        publish();
        showInDebugger(m_life.findings().verdict());
    });
    m_mutex.unlock();
}

void Probe::publish()
{
    const auto changes = m_life.findings().takeChanges();
    for (const auto check : changes)
        showInDebugger(m_life.findings().line(check));
    // A host that crashes wants to know which call came last.
    const auto calls = std::exchange(m_writtenCalls, m_life.calls().size());
    if ((!changes.empty() || calls != m_writtenCalls) && !m_file.write(report()))
        showInDebugger("the report can't be written");
}

std::string Probe::report()
{
    std::string text = "qrl-probe: what a host does with its plug-in\r\nhost: " + m_host + "\r\n\r\n";
    for (std::size_t i = 0; i < checkCount; ++i)
        text += m_life.findings().line(static_cast<Check>(i)) + "\r\n";
    text += "\r\nthe first calls:\r\n";
    for (const auto& call : m_life.calls())
        text += "  " + call + "\r\n";
    return text + "\r\n" + m_life.findings().verdict() + "\r\n";
}

} // namespace tools::qrlprobe
