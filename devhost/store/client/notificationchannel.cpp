#include "store/client/notificationchannel.h"

#include "store/protocol/patterns.h"
#include "vxtl/parsejson.h"

#include <algorithm>
#include <atomic>
#include <nlohmann/json.hpp>

#include <windows.h>

namespace devhost::store {

namespace {

/// Unlike any other on this machine, also after this process's number is given to another one.
std::string newSession()
{
    static std::atomic<unsigned> count{0};
    LARGE_INTEGER ticks{};
    QueryPerformanceCounter(&ticks);
    return std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count) + "-" + std::to_string(ticks.QuadPart);
}

/// Nothing either when the other side talks nonsense: the connection is given up then, too.
std::optional<nlohmann::json> receiveJson(ipc::Pipe& pipe)
{
    const auto frame = pipe.receive();
    try {
        return frame ? std::optional(vx::parseJson(*frame)) : std::nullopt;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

} // namespace

NotificationChannel::NotificationChannel(std::shared_ptr<CallChannel> calls, Pauses pauses)
    : m_calls(std::move(calls)), m_pauses(pauses), m_session(newSession())
{}

SubscriptionId NotificationChannel::subscribe(const std::string& name, ChangeCallback callback)
{
    auto subscription = std::make_shared<Subscription>();
    subscription->callback = std::move(callback);
    {
        const std::lock_guard order(m_order);
        const nlohmann::json reply = m_calls->call({{"op", "subscribe"}, {"session", m_session}, {"name", name}}, name);
        const std::lock_guard lock(m_mutex);
        subscription->id = ++m_lastId;
        subscription->since = reply.at("revision").get<std::int64_t>();
        Topic& topic = m_topics[name];
        if (topic.subscriptions.empty()) {
            topic.revision = subscription->since;
            topic.present = reply.at("present").get<bool>();
        }
        topic.subscriptions.push_back(subscription);
        if (!m_thread.joinable())
            m_thread = std::thread([self = shared_from_this()] { self->run(); });
    }
    awaitConnection();
    return subscription->id;
}

void NotificationChannel::awaitConnection()
{
    std::unique_lock lock(m_mutex);
    if (m_online || std::this_thread::get_id() == m_thread.get_id())
        return;
    // The server has just answered, so the thread need not sit out its pause.
    m_retry.set();
    m_changed.waitFor(lock, std::chrono::milliseconds(m_pauses.connectMs), [&] { return m_online; });
}

void NotificationChannel::unsubscribe(SubscriptionId id)
{
    std::shared_ptr<Subscription> removed;
    {
        const std::lock_guard order(m_order);
        bool last = false;
        const std::string name = topicOf(id, last);
        m_calls->call({{"op", "unsubscribe"}, {"session", m_session}, {"name", name}, {"keep", !last}}, name);
        const std::lock_guard lock(m_mutex);
        auto& subscriptions = m_topics.at(name).subscriptions;
        const auto found = std::ranges::find(subscriptions, id, &Subscription::id);
        removed = *found;
        removed->active = false;
        subscriptions.erase(found);
        if (last)
            m_topics.erase(name);
    }
    // Not under m_order: the callback that is waited for may itself subscribe.
    std::unique_lock lock(m_mutex);
    if (std::this_thread::get_id() != m_thread.get_id())
        m_changed.wait(lock, [&] { return !removed->running; });
}

std::string NotificationChannel::topicOf(SubscriptionId id, bool& last)
{
    const std::lock_guard lock(m_mutex);
    for (const auto& [name, topic] : m_topics) {
        if (std::ranges::find(topic.subscriptions, id, &Subscription::id) != topic.subscriptions.end()) {
            last = topic.subscriptions.size() == 1;
            return name;
        }
    }
    throw StoreException(ErrorCode::NotFound, "subscription " + std::to_string(id));
}

void NotificationChannel::stop()
{
    m_stop.set();
    if (!m_thread.joinable())
        return;
    if (std::this_thread::get_id() == m_thread.get_id())
        m_thread.detach();
    else
        m_thread.join();
}

void NotificationChannel::run()
{
    unsigned long pause = 0;
    for (;;) {
        m_retry.waitOr(m_stop, pause);
        if (m_stop.isSet())
            return;
        m_retry.reset();
        const auto pipe = connect();
        if (pipe) {
            setOnline(true);
            listen(*pipe);
            setOnline(false);
        }
        pause = pipe ? m_pauses.firstMs : std::clamp(2 * pause, m_pauses.firstMs, m_pauses.longestMs);
    }
}

void NotificationChannel::setOnline(bool online)
{
    const std::lock_guard lock(m_mutex);
    m_online = online;
    m_changed.notify_all();
}

std::unique_ptr<ipc::Pipe> NotificationChannel::connect()
{
    // Under the lock no subscription can fall between the list that is sent and the server's taking it.
    const std::lock_guard order(m_order);
    return m_calls->connect(
        {{"channel", "notifications"}, {"session", m_session}, {"known", knownTopics()}}, {&m_stop});
}

nlohmann::json NotificationChannel::knownTopics()
{
    nlohmann::json known = nlohmann::json::object();
    const std::lock_guard lock(m_mutex);
    for (auto& [name, topic] : m_topics) {
        known[name] = {{"revision", topic.revision}, {"present", topic.present}};
        // Nothing that the new connection brings can be older than a subscription, while a server with
        // another file may count from a lower number.
        for (const auto& subscription : topic.subscriptions)
            subscription->since = -1;
    }
    return known;
}

void NotificationChannel::listen(ipc::Pipe& pipe)
{
    while (const auto json = receiveJson(pipe)) {
        Change change{json->value("name", std::string()), std::nullopt};
        if (const int type = json->value("type", 0))
            change.type = static_cast<Type>(type);
        for (const auto& subscription : note(change, json->value("revision", std::int64_t{0})))
            deliver(*subscription, change);
    }
}

std::vector<std::shared_ptr<NotificationChannel::Subscription>> NotificationChannel::note(
    const Change& change, std::int64_t revision)
{
    std::vector<std::shared_ptr<Subscription>> concerned;
    const std::lock_guard lock(m_mutex);
    for (auto& [name, topic] : m_topics) {
        if (!matches(name, change.name))
            continue;
        topic.revision = revision;
        topic.present = change.type.has_value();
        std::ranges::copy_if(topic.subscriptions, std::back_inserter(concerned),
            [&](const auto& subscription) { return revision > subscription->since; });
    }
    return concerned;
}

void NotificationChannel::deliver(Subscription& subscription, const Change& change)
{
    {
        const std::lock_guard lock(m_mutex);
        if (!subscription.active)
            return;
        subscription.running = true;
    }
    try {
        subscription.callback(change);
    } catch (...) {
        // What a subscriber throws is its own affair; the others are still to be told.
    }
    const std::lock_guard lock(m_mutex);
    subscription.running = false;
    m_changed.notify_all();
}

} // namespace devhost::store
