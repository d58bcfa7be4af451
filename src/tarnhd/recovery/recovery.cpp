#include "tarnhd/recovery/recovery.h"

#include "tarnhd/recovery/recoverydriver.h"
#include "vxtl/clock.h"
#include "vxtl/guarded.h"

#include <algorithm>
#include <utility>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

Recovery::Recovery(std::shared_ptr<StoreWatch> store, std::shared_ptr<RequestBook> book,
    const TarnpatchSettings& settings, std::unique_ptr<RecoveryDriver> driver, RecoveryPauses pauses)
    : m_store(std::move(store)), m_driver(std::move(driver)), m_answers(m_store, book, [this] { noteOutage(); }),
      m_requests(settings, book, m_answers, *m_driver), m_pauses(pauses)
{
    m_store->setListener([this] { noteOutage(); });
}

Recovery::~Recovery()
{
    m_store->setListener({});
}

void Recovery::run(Subscriptions& subscriptions)
{
    LogStream(Level::Info) << "Recovery: it is on.";
    while (waitForWork())
        guarded("Recovery: a round failed: ", [&] { round(subscriptions); });
}

void Recovery::stop()
{
    const std::lock_guard lock(m_mutex);
    m_isStopped = true;
    m_changed.notify_all();
}

void Recovery::noteOutage()
{
    const std::lock_guard lock(m_mutex);
    m_isOutage = true;
    m_changed.notify_all();
}

void Recovery::checkRequests()
{
    if (!m_requests.isAnyLeftAlone())
        return;
    const std::lock_guard lock(m_mutex);
    m_isCheckDue = true;
    m_changed.notify_all();
}

bool Recovery::waitForWork()
{
    std::unique_lock lock(m_mutex);
    const auto isStopped = [this] { return m_isStopped; };
    const auto isWoken = [this] { return m_isStopped || m_isOutage || m_isCheckDue; };
    // Every call that fails wakes, which would make a storm of looks while the store is away.
    if (m_isStoreAway)
        m_changed.waitFor(lock, m_pauses.outage, isStopped);
    else if (m_refusedPause.count() > 0)
        m_changed.waitFor(lock, m_refusedPause, isWoken);
    else
        m_changed.wait(lock, isWoken);
    if (m_isOutage && !m_isStoreAway)
        rest(lock);
    return !m_isStopped;
}

// What goes again in each round, or in what a round has others do, must not keep all of them busy for ever.
void Recovery::rest(std::unique_lock<sync::Mutex>& lock)
{
    const auto left = m_restUntil - uptime();
    m_rest = left.count() > 0 ? std::min(2 * m_rest, m_pauses.again) : m_pauses.outage;
    m_changed.waitFor(lock, left, [this] { return m_isStopped; });
}

void Recovery::round(Subscriptions& subscriptions)
{
    const bool wasAway = m_isStoreAway;
    m_isStoreAway = !m_store->isReachable();
    if (m_isStoreAway) {
        m_rest = m_pauses.outage;
        if (!wasAway)
            LogStream(Level::Info) << "Recovery: the store is away, it is looked for every " << m_pauses.outage.count()
                                   << " ms.";
        return;
    }
    std::unique_lock lock(m_mutex);
    const bool wasOutage = std::exchange(m_isOutage, false);
    const bool isCheckDue = std::exchange(m_isCheckDue, false);
    lock.unlock();
    makeUp(subscriptions, wasOutage, isCheckDue);
    if (wasOutage)
        m_restUntil = uptime() + m_rest;
}

void Recovery::makeUp(Subscriptions& subscriptions, bool wasOutage, bool isCheckDue)
{
    if (wasOutage) {
        LogStream(Level::Info) << "Recovery: the store answers again.";
        // First: what is kept may be the acknowledgement of a request that looks open.
        writeKeptValues();
        m_driver->publish();
    }
    const auto [areAllMade, isRequestMade] = m_answers.subscribeFailed(subscriptions);
    if (areAllMade)
        m_refusedPause = {};
    else
        m_refusedPause = std::min(std::max(2 * m_refusedPause, m_pauses.outage), m_pauses.longest);
    m_answers.answerDeferred();
    if (wasOutage || isCheckDue || isRequestMade)
        m_requests.serve();
}

void Recovery::writeKeptValues()
{
    m_areAnyKept = m_store->takeFailedWrites() || m_areAnyKept;
    const StoreWatch::Span span(*m_store);
    m_driver->writeKeptValues();
    if (!span.hasMetOutage() && std::exchange(m_areAnyKept, false))
        LogStream(Level::Info) << "Recovery: the values that were kept meanwhile are written.";
}

} // namespace vx::tarn
