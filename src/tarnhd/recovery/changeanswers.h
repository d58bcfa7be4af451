#pragma once

#include "tarnhd/recovery/requestbook.h"
#include "tarnhd/recovery/storewatch.h"
#include "vxtl/lock.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vx::tarn {

class Subscriptions;

/// What is done at the change of a key.
struct ChangeAnswer {
    std::wstring key;
    std::function<void()> answer;
    std::function<void()> missed = {};                 ///< when changes may have gone unseen; empty: the answer
    AgentStartReason request = AgentStartReason::None; ///< the one that the key opens
};

/// The answers to changes, each of them one at a time whoever runs it. One that meets an unreachable store, or would,
/// is deferred, and so is a subscription that fails; a deferred request is withdrawn from the book. subscribe comes
/// first, before the thread that makes up for what was deferred; answers come on any thread.
class ChangeAnswers {
public:
    ChangeAnswers(std::shared_ptr<StoreWatch> store, std::shared_ptr<RequestBook> requests);
    ~ChangeAnswers();
    ChangeAnswers(const ChangeAnswers&) = delete;
    ChangeAnswers& operator=(const ChangeAnswers&) = delete;

    /// Outlives the subscriptions. A failure is logged by them.
    void subscribe(Subscriptions& subscriptions, ChangeAnswer change);
    /// Answers as at a change of the key, on this thread. Throws what the answer throws.
    void answer(const std::wstring& key);

    /// Tries the subscriptions that failed, and answers what they may have missed. False when one fails again.
    bool subscribeFailed(Subscriptions& subscriptions);
    /// Answers what was deferred, but for requests: those are served when they are found open.
    void answerDeferred();
    /// Answers the request's change when `isNeeded` still says so once nobody else answers it.
    void serve(AgentStartReason request, const std::function<bool()>& isNeeded);

private:
    struct Topic;

    void run(Topic& topic, const std::function<void()>& answer);
    void defer(Topic& topic) noexcept;
    void answerDeferred(Topic& topic);

    const std::shared_ptr<StoreWatch> m_store;
    const std::shared_ptr<RequestBook> m_requests;
    std::vector<std::unique_ptr<Topic>> m_topics; ///< grows in subscribe only
};

} // namespace vx::tarn
