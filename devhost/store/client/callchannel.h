#pragma once

#include "ipc/pipe.h"
#include "store/protocol/role.h"

#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace devhost::store {

/// The connection for calls: one request and its reply after another. Any thread.
class CallChannel {
public:
    /// Does not connect.
    CallChannel(std::wstring instance, Role role) : m_instance(std::move(instance)), m_role(role) {}

    /// Sends the request and waits for the reply, on a new connection when the old one has died. Throws
    /// StoreException with the reply's code, or Unreachable; `subject` stands at the head of its line.
    nlohmann::json call(const nlohmann::json& request, const std::string& subject);

    /// A connection to the same server beside this one, as the same caller; `hello` holds "channel" and what that
    /// kind needs. Null when nobody listens, the server refuses or a limit is reached.
    std::unique_ptr<ipc::Pipe> connect(nlohmann::json hello, ipc::Limits limits = {}) const;

private:
    std::optional<std::string> exchange(const std::string& frame);

    std::wstring m_instance;
    Role m_role;
    std::mutex m_mutex;
    std::unique_ptr<ipc::Pipe> m_pipe; ///< guarded by m_mutex; null when not connected
};

} // namespace devhost::store
