#pragma once

#include "store/server/pipesecurity.h"
#include "store/server/requesthandler.h"
#include "vxtl/handle.h"

#include <atomic>
#include <list>
#include <string>
#include <thread>

namespace devhost::store {

/// Accepts connections on a named pipe and gives each a thread of its own.
class Listener {
public:
    /// Clients can connect when it returns. The handler is borrowed. Throws StoreException.
    Listener(std::wstring pipeName, RequestHandler& handler);
    /// Closes all connections and joins all threads.
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

private:
    struct Served {
        std::atomic<bool> done{false};
        std::thread thread;
    };

    vx::SharedHandle createPipe(bool first) const;
    void run(vx::SharedHandle pipe);
    /// False when the listener is to stop.
    bool awaitClient(void* pipe) const;
    void serve(vx::SharedHandle pipe);
    void joinFinished();

    std::wstring m_pipeName;
    RequestHandler& m_handler;
    PipeSecurity m_security;
    vx::KernelHandle m_stopEvent;
    std::list<Served> m_served; ///< the accepting thread's, and the destructor's after that ended
    std::thread m_thread;
};

} // namespace devhost::store
