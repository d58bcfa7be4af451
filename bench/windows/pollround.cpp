#include "bench/stoprequest.h"
#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "liveblocks.h"
#include "rows.h"
#include "support/fakesettings.h"
#include "support/footprint.h"
#include "tarnhd/wusstopper/triggerkey.h"
#include "tarnhd/wusstopper/wuspoll.h"

#include <windows.h>

namespace {

using namespace std::chrono_literals;
using namespace vx::tarn;

constexpr std::size_t calls = 200;
constexpr int manyRounds = 1000;

bool isServiceRunningBare()
{
    SERVICE_STATUS_PROCESS status{};
    DWORD needed = 0;
    const SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT);
    const SC_HANDLE service = OpenServiceW(manager, L"wuauserv", SERVICE_QUERY_STATUS);
    CloseServiceHandle(manager);
    QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status), sizeof status, &needed);
    CloseServiceHandle(service);
    return status.dwCurrentState == SERVICE_RUNNING;
}

std::int64_t createdTimeBare()
{
    HKEY key = nullptr;
    std::int64_t time = 0;
    DWORD size = sizeof time;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, triggerKey + std::size("HKEY_LOCAL_MACHINE"), 0, KEY_READ, &key);
    RegQueryValueExW(key, triggerTimeValue, nullptr, nullptr, reinterpret_cast<BYTE*>(&time), &size);
    RegCloseKey(key);
    return time;
}

/// The stopper's own rounds, without the pause between them.
class Rounds {
public:
    explicit Rounds(bool askUser)
    {
        const auto& reboot = TarnpatchSettings(nullptr).installation.reboot;
        m_store->set(reboot.askUser, askUser);
        m_store->set(reboot.forceInSeconds, 24 * 3600);
    }
    void operator()() { bench::keep(m_poll.round({*m_stop, *m_registry})); }
    bool isStopRequested() const { return vx::sync::waitForSingleObject(*m_stop, 0); }

private:
    const std::shared_ptr<support::FakeSettings> m_store = std::make_shared<support::FakeSettings>();
    common::CommonFactory m_factory;
    const std::shared_ptr<common::Event> m_stop = m_factory.createEvent(true, false, {}, false, nullptr);
    const std::shared_ptr<common::Event> m_registry = m_factory.createEvent(false, false, {}, false, nullptr);
    WUSPoll m_poll{support::FakeSettings::handle(m_store), &m_factory, {.pollPeriod = 0ms}};
};

template <typename Round>
std::string heapGrowth(Round round)
{
    const auto before = support::footprint();
    for (int i = 0; i < manyRounds; ++i)
        round();
    return std::to_string((support::footprint() - before).heapBytes);
}

void noteWhatStays(bench::Comparison& table, Rounds& rounds)
{
    const long blocks = liveBlocks();
    const auto handles = support::footprint().handles;
    const std::string ours = heapGrowth([&] { rounds(); });
    const long leftBlocks = liveBlocks() - blocks;
    const auto leftHandles = support::footprint().handles - handles;
    const std::string bare = heapGrowth([] { isServiceRunningBare(); });
    // The service manager's client may keep something of each question: that is for the bare calls to show.
    table.note(std::to_string(manyRounds) + " rounds leave " + std::to_string(leftBlocks) + " blocks and " +
                   std::to_string(leftHandles) + " handles; the system's heaps grow by " + ours +
                   " bytes, under as many bare questions by " + bare,
        leftBlocks == 0 && leftHandles == 0);
}

} // namespace

void comparePollRounds(bench::Comparison& table)
{
    const bench::StopRequest request;
    const auto reach = bench::Reach::timeUpTo(1.2);
    Rounds asking(true);
    table.row("poll round, the user is asked",
        bench::perCall(calls,
            [&] {
                bench::keep(isServiceRunningBare());
                bench::keep(asking.isStopRequested());
            }),
        bench::perCall(calls, [&] { asking(); }), reach);
    Rounds notDue(false);
    table.row("poll round, a reboot that is not due",
        bench::perCall(calls,
            [&] {
                bench::keep(isServiceRunningBare());
                bench::keep(notDue.isStopRequested());
                bench::keep(createdTimeBare());
            }),
        bench::perCall(calls, [&] { notDue(); }), reach);
    noteWhatStays(table, notDue);
}
