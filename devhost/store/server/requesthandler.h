#pragma once

#include "store/protocol/role.h"
#include "store/server/faultplan.h"
#include "store/server/subscribers.h"
#include "store/server/valuestore.h"

#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace devhost::store {

/// Carries out the requests of all clients on one store. Any thread; one request at a time.
///
/// A request is {"op": "get", "name": ...}; a reply is {"code": 0, ...} or {"code": 10, "text": ...} with
/// a text where the code's own does not say enough.
class RequestHandler {
public:
    /// Makes the text the new content of the store's file; throws StoreException.
    using Save = std::function<void(const std::string& text)>;

    RequestHandler(ValueStore values, Save save);

    /// Never throws for what a client sends.
    std::string handle(const std::string& request, Role role);

    /// Takes over a connection for notifications. The hello holds "session" and "known": for each name
    /// subscribed {"revision", "present"}, what the client saw last; what has changed since then is
    /// queued at once. Throws the JSON library's errors.
    std::shared_ptr<Subscriber> attach(const nlohmann::json& hello, std::function<void()> wake);
    void detach(const std::string& session, const Subscriber* subscriber);

    const FaultPlan& faults() const noexcept { return m_faults; }

private:
    using Operate = void (RequestHandler::*)(const nlohmann::json& request, nlohmann::json& reply);

    void dispatch(const nlohmann::json& request, Role role, nlohmann::json& reply);
    void open(const nlohmann::json& request, nlohmann::json& reply);
    void get(const nlohmann::json& request, nlohmann::json& reply);
    void set(const nlohmann::json& request, nlohmann::json& reply);
    void remove(const nlohmann::json& request, nlohmann::json& reply);
    void list(const nlohmann::json& request, nlohmann::json& reply);
    void subscribe(const nlohmann::json& request, nlohmann::json& reply);
    void unsubscribe(const nlohmann::json& request, nlohmann::json& reply);
    void plan(const nlohmann::json& request, nlohmann::json& reply);

    void change(const std::string& name, std::optional<Value> value);
    bool changedSince(const std::string& name, const nlohmann::json& known) const;
    std::string notification(const std::string& name) const;

    std::mutex m_mutex;
    ValueStore m_values; ///< guarded by m_mutex
    Save m_save;
    FaultPlan m_faults;
    Subscribers m_subscribers;
};

} // namespace devhost::store
