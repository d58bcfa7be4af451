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
/// is deferred, and so is a subscription that fails; a deferred request is withdrawn from the book. A change of a
/// request that recovery has served meanwhile is none. subscribe comes first, before the thread that makes up for what
/// was deferred; answers come on any thread.
class ChangeAnswers {
public:
    /// `onDeferred` is called on the answer's thread once one is deferred; it must neither block nor throw.
    ChangeAnswers(
        std::shared_ptr<StoreWatch> store, std::shared_ptr<RequestBook> requests, std::function<void()> onDeferred);
    ~ChangeAnswers();
    ChangeAnswers(const ChangeAnswers&) = delete;
    ChangeAnswers& operator=(const ChangeAnswers&) = delete;

    /// Outlives the subscriptions. A failure is logged by them.
    void subscribe(Subscriptions& subscriptions, ChangeAnswer change);
    /// Answers as at a change of the key, on this thread. Throws what the answer throws.
    void answer(const std::wstring& key);

    /// What became of the subscriptions that had failed.
    struct Tried {
        bool areAllMade = true;
        bool isRequestMade = false; ///< one of a request's key: that may be open, and was not looked at
    };
    /// Tries the subscriptions that failed, and answers what they may have missed, but for requests.
    Tried subscribeFailed(Subscriptions& subscriptions);
    /// Answers what was deferred, but for requests: those are served when they are found open.
    void answerDeferred();
    /// Answers the request's change when `isNeeded` still says so once nobody else answers it.
    void serve(AgentStartReason request, const std::function<bool()>& isNeeded);

private:
    struct Topic;
    using Way = std::function<void()> ChangeAnswer::*;

    bool subscribe(Subscriptions& subscriptions, Topic& topic);
    void run(Topic& topic, Way way);
    bool isServed(const Topic& topic) const;
    void defer(Topic& topic, Way way) noexcept;
    void answerDeferred(Topic& topic);

    const std::shared_ptr<StoreWatch> m_store;
    const std::shared_ptr<RequestBook> m_requests;
    const std::function<void()> m_onDeferred;
    std::vector<std::unique_ptr<Topic>> m_topics; ///< grows in subscribe only
};

} // namespace vx::tarn
