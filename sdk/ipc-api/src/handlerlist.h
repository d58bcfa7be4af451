#pragma once

#include "ipc-api/ipcserver.h"
#include "vxtl/lock.h"

#include <list>
#include <map>
#include <memory>

namespace vx::tarn::common {

/// The handlers by their servers' addresses, which is all that comes back from the library: a message for a server that
/// is gone finds nothing. Any thread.
class HandlerList {
public:
    class Call;

    static HandlerList& instance();

    /// For calls that begin from now on; an empty handler is none.
    void set(const void* server, const IPCServer::Handler& handler);
    /// No call of the server's handler begins from now on. Blocks while other threads are inside one.
    void remove(const void* server);

private:
    using SharedHandler = std::shared_ptr<const IPCServer::Handler>;
    struct UnderWay {
        const void* server;
        unsigned long thread;
    };

    bool isCalledElsewhere(const void* server) const;

    sync::Mutex m_mutex;
    sync::ConditionVariable m_returned;
    std::map<const void*, SharedHandler> m_handlers; ///< guarded by m_mutex
    std::list<UnderWay> m_calls;                     ///< guarded by m_mutex
};

/// One message's way through a handler. A stack object.
class HandlerList::Call {
public:
    explicit Call(const void* server);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /// Null for a server that has none or is gone.
    const IPCServer::Handler* handler() const { return m_handler.get(); }

private:
    std::list<UnderWay> m_entry; ///< while it isn't in the list of all
    std::list<UnderWay>::iterator m_place;
    SharedHandler m_handler; ///< its own share: a handler may be replaced or removed meanwhile
};

} // namespace vx::tarn::common
