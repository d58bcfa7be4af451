#pragma once

#include "ipc/signal.h"
#include "store/client/callchannel.h"
#include "store/client/client.h"
#include "vxtl/lock.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace devhost::store {

/// The subscriptions of one client, and the thread that is told of changes and calls back. The thread
/// begins with the first subscription; it comes back to a server that was gone and subscribes anew.
/// Any thread may call. Held by shared pointer: the thread keeps it alive.
class NotificationChannel : public std::enable_shared_from_this<NotificationChannel> {
public:
    /// How patient the thread is with a server that is gone.
    struct Pauses {
        unsigned long firstMs = 100;    ///< between attempts to reach a server that is gone; doubled
        unsigned long longestMs = 250;  ///< up to this
        unsigned long connectMs = 2000; ///< how long a subscription waits for the thread's connection
    };

    NotificationChannel(std::shared_ptr<CallChannel> calls, Pauses pauses);

    /// As Client's operations of these names.
    SubscriptionId subscribe(const std::string& name, ChangeCallback callback);
    void unsubscribe(SubscriptionId id);

    /// Ends the thread and waits for it, unless called on it. Nothing else may be called afterwards.
    void stop();

private:
    /// One callback. A running one keeps its unsubscriber waiting.
    struct Subscription {
        SubscriptionId id = 0;
        ChangeCallback callback;
        std::int64_t since = 0; ///< of what was known when it was made: earlier changes are not its own
        bool active = true;
        bool running = false;
    };
    /// All subscriptions to one name, and what the store last told of it.
    struct Topic {
        std::int64_t revision = 0;
        bool present = false;
        std::vector<std::shared_ptr<Subscription>> subscriptions;
    };

    void awaitConnection();
    void run();
    void setOnline(bool online);
    std::unique_ptr<ipc::Pipe> connect();
    nlohmann::json knownTopics();
    void listen(ipc::Pipe& pipe);
    std::vector<std::shared_ptr<Subscription>> note(const Change& change, std::int64_t revision);
    void deliver(Subscription& subscription, const Change& change);
    std::string topicOf(SubscriptionId id, bool& last);

    std::shared_ptr<CallChannel> m_calls;
    Pauses m_pauses;
    std::string m_session;
    ipc::Signal m_stop;
    ipc::Signal m_retry;
    vx::sync::Mutex m_order; ///< held while the server is told what is subscribed; taken before m_mutex
    std::thread m_thread;    ///< begun under both locks, ended by stop
    vx::sync::Mutex m_mutex;
    vx::sync::ConditionVariable m_changed; ///< of m_online and of the subscriptions' running
    bool m_online = false;                 ///< guarded by m_mutex
    std::map<std::string, Topic> m_topics; ///< guarded by m_mutex
    SubscriptionId m_lastId = 0;           ///< guarded by m_mutex
};

} // namespace devhost::store
