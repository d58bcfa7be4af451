#pragma once

#include "store/protocol/pipe.h"
#include "store/server/requesthandler.h"

namespace devhost::store {

/// The server's side of one connection; lives on the thread that runs it. The first frame says who calls
/// and what for; then it either answers requests or hands out notifications.
class ServedConnection {
public:
    /// The handler and the stop event are borrowed.
    ServedConnection(vx::SharedHandle pipe, RequestHandler& handler, void* stopEvent);

    /// Returns when the client goes, the stop event fires or the fault plan refuses. Never throws.
    void run() noexcept;

private:
    void serve();
    void serveCalls(Role role);
    void serveNotifications(const nlohmann::json& hello, Role role);
    bool refused(Role role) const;
    /// False when the stop event ended the pause.
    bool pause(Role role) const;

    Pipe m_pipe;
    RequestHandler& m_handler;
    void* m_stopEvent;
};

} // namespace devhost::store
