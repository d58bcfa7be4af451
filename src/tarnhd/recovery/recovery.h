#pragma once

#include "tarnhd/recovery/changeanswers.h"
#include "tarnhd/recovery/openrequests.h"
#include "vxtl/lock.h"

#include <chrono>
#include <memory>
#include <mutex>

namespace vx::tarn {

class RecoveryDriver;

/// How long recovery sleeps before it looks again by itself.
struct RecoveryPauses {
    std::chrono::milliseconds outage{250};    ///< while the store is away, and after one is made up for
    std::chrono::milliseconds longest{60000}; ///< while it refuses a subscription; doubled up to this
    std::chrono::milliseconds again{1500};    ///< after outages that follow close upon each other; doubled up to this
};

/// Makes up for what outages of the store, a start, and changes at the same time leave undone. Asleep while there is
/// nothing of the kind: it is woken by the first call that finds the store unreachable, and by whoever finds an open
/// request. Only while the store is away, or a subscription has failed, it wakes by itself.
class Recovery {
public:
    Recovery(std::shared_ptr<StoreWatch> store, std::shared_ptr<RequestBook> book, const TarnpatchSettings& settings,
        std::unique_ptr<RecoveryDriver> driver, RecoveryPauses pauses = {});
    ~Recovery();
    Recovery(const Recovery&) = delete;
    Recovery& operator=(const Recovery&) = delete;

    /// Before run; outlives the subscriptions. The answer runs on the store's threads and on that of run.
    void subscribe(Subscriptions& subscriptions, ChangeAnswer change)
    {
        m_answers.subscribe(subscriptions, std::move(change));
    }
    /// See ChangeAnswers. Any thread.
    void answer(const std::wstring& key) { m_answers.answer(key); }

    /// Blocks until stop. Looks for open requests at once. What fails in a round is logged. Nobody else may use the
    /// subscriptions meanwhile.
    void run(Subscriptions& subscriptions);
    /// Any thread; run ends once the current round has.
    void stop();

    /// Has run look for open requests when there are any. Any thread; reads the store.
    void checkRequests();

private:
    /// False when stopped.
    bool waitForWork();
    void round(Subscriptions& subscriptions);
    void makeUp(Subscriptions& subscriptions, bool wasOutage, bool isCheckDue);
    void writeKeptValues();
    void noteOutage();
    void rest(std::unique_lock<sync::Mutex>& lock);

    const std::shared_ptr<StoreWatch> m_store;
    const std::unique_ptr<RecoveryDriver> m_driver;
    ChangeAnswers m_answers;
    OpenRequests m_requests;
    const RecoveryPauses m_pauses;
    sync::Mutex m_mutex;
    sync::ConditionVariable m_changed;
    bool m_isStopped = false; ///< guarded by m_mutex
    bool m_isOutage = false;  ///< there was one that is not made up for; guarded by m_mutex
    bool m_isCheckDue = true; ///< guarded by m_mutex
    // Of run's thread.
    bool m_isStoreAway = false;
    bool m_areAnyKept = false;                ///< values that no round has written yet
    std::chrono::milliseconds m_restUntil{0}; ///< uptime
    std::chrono::milliseconds m_rest = m_pauses.outage;
    std::chrono::milliseconds m_refusedPause{0}; ///< 0 when all subscriptions are made
};

} // namespace vx::tarn
