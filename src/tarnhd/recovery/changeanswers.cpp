#include "tarnhd/recovery/changeanswers.h"

#include "tarnhd/subscriptions/subscriptions.h"
#include "vxtl/guarded.h"
#include "vxtl/scopeexit.h"

#include <mutex>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

struct ChangeAnswers::Topic {
    explicit Topic(ChangeAnswer c) : change(std::move(c)) {}

    const ChangeAnswer change;
    sync::RecursiveMutex mutex; ///< held over an answer, which may change its own key
    std::atomic<bool> isDeferred = false;
    bool isSubscribed = false; ///< of subscribe and the thread that makes up for it
};

ChangeAnswers::ChangeAnswers(std::shared_ptr<StoreWatch> store, std::shared_ptr<RequestBook> requests)
    : m_store(std::move(store)), m_requests(std::move(requests))
{}

ChangeAnswers::~ChangeAnswers() = default;

void ChangeAnswers::subscribe(Subscriptions& subscriptions, ChangeAnswer change)
{
    Topic& topic = *m_topics.emplace_back(std::make_unique<Topic>(std::move(change)));
    topic.isSubscribed = subscriptions.subscribe(topic.change.key,
                             [this, &topic](const std::wstring&) { run(topic, topic.change.answer); }) != -1;
}

void ChangeAnswers::run(Topic& topic, const std::function<void()>& answer)
{
    const std::lock_guard lock(topic.mutex);
    // With what the caches remember it would answer an earlier change.
    if (!m_store->isReachable()) {
        defer(topic);
        return;
    }
    topic.isDeferred = false;
    const StoreWatch::Span span(*m_store);
    const ScopeExit end([&] {
        if (span.hasMetOutage())
            defer(topic);
    });
    answer();
}

void ChangeAnswers::defer(Topic& topic) noexcept
{
    topic.isDeferred = true;
    if (topic.change.request != AgentStartReason::None)
        m_requests->withdraw(topic.change.request);
    LogStream(Level::Info) << "Recovery: the change of " << topic.change.key
                           << " met an unreachable store, it is answered when the store is back.";
}

void ChangeAnswers::answer(const std::wstring& key)
{
    for (const auto& topic : m_topics)
        if (topic->change.key == key)
            run(*topic, topic->change.answer);
}

bool ChangeAnswers::subscribeFailed(Subscriptions& subscriptions)
{
    bool areAllSubscribed = true;
    for (const auto& topic : m_topics) {
        if (topic->isSubscribed)
            continue;
        topic->isSubscribed = subscriptions.subscribe(topic->change.key,
                                  [this, &t = *topic](const std::wstring&) { run(t, t.change.answer); }) != -1;
        areAllSubscribed = areAllSubscribed && topic->isSubscribed;
        if (!topic->isSubscribed)
            continue;
        LogStream(Level::Info) << "Recovery: the subscription of " << topic->change.key << " is made.";
        if (topic->change.request == AgentStartReason::None)
            guarded([&] { run(*topic, topic->change.missed ? topic->change.missed : topic->change.answer); });
    }
    return areAllSubscribed;
}

void ChangeAnswers::answerDeferred()
{
    for (const auto& topic : m_topics)
        if (topic->isDeferred)
            guarded([&] { answerDeferred(*topic); });
}

void ChangeAnswers::answerDeferred(Topic& topic)
{
    const std::lock_guard lock(topic.mutex);
    // A later change may have been answered meanwhile.
    if (!topic.isDeferred.exchange(false) || topic.change.request != AgentStartReason::None)
        return;
    LogStream(Level::Info) << "Recovery: the change of " << topic.change.key << " is answered now.";
    run(topic, topic.change.answer);
}

void ChangeAnswers::serve(AgentStartReason request, const std::function<bool()>& isNeeded)
{
    for (const auto& topic : m_topics) {
        if (topic->change.request != request)
            continue;
        const std::lock_guard lock(topic->mutex);
        if (isNeeded())
            run(*topic, topic->change.answer);
    }
}

} // namespace vx::tarn
