#include "tarnhd/recovery/changeanswers.h"

#include "tarnhd/subscriptions/subscriptions.h"
#include "vxtl/guarded.h"
#include "vxtl/scopeexit.h"

#include <mutex>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

struct ChangeAnswers::Topic {
    explicit Topic(ChangeAnswer c) : change(std::move(c))
    {
        if (!change.missed)
            change.missed = change.answer;
    }

    ChangeAnswer change;
    sync::RecursiveMutex mutex; ///< held over an answer, which may change its own key
    std::atomic<bool> isDeferred = false;
    Way deferred = &ChangeAnswer::answer; ///< guarded by mutex
    bool isSubscribed = false;            ///< of subscribe and the thread that makes up for it
};

ChangeAnswers::ChangeAnswers(
    std::shared_ptr<StoreWatch> store, std::shared_ptr<RequestBook> requests, std::function<void()> onDeferred)
    : m_store(std::move(store)), m_requests(std::move(requests)), m_onDeferred(std::move(onDeferred))
{}

ChangeAnswers::~ChangeAnswers() = default;

void ChangeAnswers::subscribe(Subscriptions& subscriptions, ChangeAnswer change)
{
    Topic& topic = *m_topics.emplace_back(std::make_unique<Topic>(std::move(change)));
    topic.isSubscribed = subscribe(subscriptions, topic);
}

bool ChangeAnswers::subscribe(Subscriptions& subscriptions, Topic& topic)
{
    const auto answer = [this, &topic](const std::wstring&) { run(topic, &ChangeAnswer::answer); };
    return subscriptions.subscribe(topic.change.key, answer) != -1;
}

void ChangeAnswers::run(Topic& topic, Way way)
{
    const std::lock_guard lock(topic.mutex);
    // With what the caches remember it would answer an earlier change.
    if (!m_store->isReachable()) {
        defer(topic, way);
        return;
    }
    topic.isDeferred = false;
    const StoreWatch::Span span(*m_store);
    const ScopeExit end([&] {
        if (span.hasMetOutage())
            defer(topic, way);
    });
    if (isServed(topic))
        LogStream(Level::Info) << "Recovery: the change of " << topic.change.key << " has been answered already.";
    else
        (topic.change.*way)();
}

// A store that comes back may tell of a change only after that was found open: its agent is not to run twice.
bool ChangeAnswers::isServed(const Topic& topic) const
{
    return topic.change.request != AgentStartReason::None && m_requests->isServed(topic.change.request);
}

void ChangeAnswers::defer(Topic& topic, Way way) noexcept
{
    topic.deferred = way;
    topic.isDeferred = true;
    if (topic.change.request != AgentStartReason::None)
        m_requests->withdraw(topic.change.request);
    LogStream(Level::Info) << "Recovery: the change of " << topic.change.key
                           << " met an unreachable store, it is answered when the store is back.";
    // The outage itself may have been made up for while the answer still ran.
    m_onDeferred();
}

void ChangeAnswers::answer(const std::wstring& key)
{
    for (const auto& topic : m_topics)
        if (topic->change.key == key)
            run(*topic, &ChangeAnswer::answer);
}

ChangeAnswers::Tried ChangeAnswers::subscribeFailed(Subscriptions& subscriptions)
{
    Tried tried;
    for (const auto& topic : m_topics) {
        if (topic->isSubscribed)
            continue;
        topic->isSubscribed = subscribe(subscriptions, *topic);
        tried.areAllMade = tried.areAllMade && topic->isSubscribed;
        if (!topic->isSubscribed)
            continue;
        LogStream(Level::Info) << "Recovery: the subscription of " << topic->change.key << " is made.";
        if (topic->change.request == AgentStartReason::None)
            guarded([&] { run(*topic, &ChangeAnswer::missed); });
        else
            tried.isRequestMade = true;
    }
    return tried;
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
    run(topic, topic.deferred);
}

void ChangeAnswers::serve(AgentStartReason request, const std::function<bool()>& isNeeded)
{
    for (const auto& topic : m_topics) {
        if (topic->change.request != request)
            continue;
        const std::lock_guard lock(topic->mutex);
        if (isNeeded())
            run(*topic, &ChangeAnswer::answer);
    }
}

} // namespace vx::tarn
