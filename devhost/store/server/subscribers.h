#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace devhost::store {

/// What waits to be told to one client process. Any thread.
class Subscriber {
public:
    /// `wake` is called after each push, on the pusher's thread.
    explicit Subscriber(std::function<void()> wake) : m_wake(std::move(wake)) {}

    void push(std::string frame);
    void wake() const { m_wake(); }
    /// Everything since the last call, in order.
    std::vector<std::string> take();

private:
    std::function<void()> m_wake;
    std::mutex m_mutex;
    std::vector<std::string> m_frames; ///< guarded by m_mutex
};

/// Which process, named by its session, wants to be told of which values. A name that ends in "*" stands
/// for all names that begin so. Any thread.
class Subscribers {
public:
    /// Takes the place of an earlier connection of the session.
    void attach(const std::string& session, std::set<std::string> names, std::shared_ptr<Subscriber> subscriber);
    /// Forgets the session unless another connection has taken the subscriber's place.
    void detach(const std::string& session, const Subscriber* subscriber);

    /// Without effect for a session that has no connection: it names everything when it attaches.
    void add(const std::string& session, const std::string& name);
    void remove(const std::string& session, const std::string& name);

    void publish(const std::string& name, const std::string& frame);
    void wakeAll();

private:
    /// A process's names and its present connection.
    struct Session {
        std::set<std::string> names;
        std::shared_ptr<Subscriber> subscriber;
    };

    std::mutex m_mutex;
    std::map<std::string, Session> m_sessions; ///< guarded by m_mutex
};

} // namespace devhost::store
