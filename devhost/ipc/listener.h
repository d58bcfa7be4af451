#pragma once

#include "ipc/pipe.h"

#include <atomic>
#include <functional>
#include <list>
#include <thread>

namespace devhost::ipc {

/// Accepts connections on a named pipe, from the process's own user and from administrators only, and gives
/// each a thread of its own.
class Listener {
public:
    /// Serves one connection until it is over; the signal is set when the listener is to end. The pipe has no
    /// limits at first. What it throws is logged.
    using Serve = std::function<void(Pipe& pipe, const Signal& stop)>;

    /// Clients can connect when it returns. Throws Win32Exception.
    Listener(std::wstring pipeName, Serve serve);
    /// Waits until all connections are over.
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

private:
    /// A connection's thread, to be joined once it is done.
    struct Served {
        std::atomic<bool> done{false};
        std::thread thread;
    };
    enum class Place { First, Further };

    std::unique_ptr<Pipe> createPipe(Place place) const;
    void run(std::unique_ptr<Pipe> pipe);
    void serve(std::unique_ptr<Pipe> pipe);
    void joinFinished();

    std::wstring m_pipeName;
    Serve m_serve;
    std::shared_ptr<void> m_descriptor;
    Signal m_stop;
    std::list<Served> m_served; ///< the accepting thread's, and the destructor's after that ended
    std::thread m_thread;
};

} // namespace devhost::ipc
