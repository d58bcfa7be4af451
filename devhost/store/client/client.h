#pragma once

#include "store/protocol/fault.h"
#include "store/protocol/role.h"
#include "store/protocol/value.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace devhost::store {

class CallChannel;
class NotificationChannel;

/// One change of a value.
struct Change {
    std::string name;
    std::optional<Type> type; ///< none when the value was removed
};

using ChangeCallback = std::function<void(const Change&)>;
using SubscriptionId = std::uint64_t;

/// Talks to the server of an instance. Any thread may call anything at any time; calls of one object are
/// carried out one after another. Owns one connection for calls, and one thread with a second
/// connection from the first subscription on. Both come back by themselves when the server was gone: the
/// first at the next call, the other within a quarter of a second. Names and texts are UTF-8.
///
/// Every operation throws StoreException; a server that is gone is Unreachable, at once.
class Client {
public:
    /// Does not connect.
    explicit Client(std::wstring instance, Role role = Role::Tool);
    /// Ends the thread; a running callback is waited for unless it is the one that destroys.
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// Whether a server answers within the time; waits for one to come up.
    bool waitForServer(std::chrono::milliseconds timeout);
    /// Announces a user of the store; the texts are for the server's log only.
    void open(const std::string& profile, const std::string& account, const std::string& clientName);

    /// None when there is no such value.
    std::optional<Value> get(const std::string& name);
    /// Creates or changes a value. Throws InvalidType when it exists with another type.
    void set(const std::string& name, const Value& value);
    /// False when there was no such value.
    bool remove(const std::string& name);
    /// All values whose names begin with the prefix.
    std::map<std::string, Value> list(const std::string& prefix = {});

    /// Calls back on the client's own thread after each change of the value, or of every value whose name
    /// begins with what stands before a closing "*". A change that happened while the server was
    /// restarting is told after it is back (exact names only). Exceptions of the callback are swallowed.
    SubscriptionId subscribe(const std::string& name, ChangeCallback callback);
    /// When it returns the callback does not run and never will; it may be called from inside the
    /// callback, and then returns while that runs. When it throws the subscription lives on. NotFound for
    /// an id that is not known.
    void unsubscribe(SubscriptionId id);

    /// Adds to the faults planned so far.
    void addFault(const Fault& fault);
    /// Forgets the planned faults, refusal and delay.
    void clearFaults();
    void setRefuse(bool refuse);
    void setDelay(std::chrono::milliseconds delay);
    FaultState faultState();

private:
    nlohmann::json callUnlessMissing(const char* operation, const std::string& name);
    FaultState plan(nlohmann::json request);

    std::shared_ptr<CallChannel> m_calls;
    std::shared_ptr<NotificationChannel> m_notifications;
};

} // namespace devhost::store
