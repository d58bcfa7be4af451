#pragma once

#include "ipc/pipe.h"
#include "store/server/requesthandler.h"

namespace devhost::store {

/// The server's side of one connection; lives on the thread that runs it. The first frame says who calls
/// and what for; then it either answers requests or hands out notifications.
class ServedConnection {
public:
    /// All are borrowed.
    ServedConnection(ipc::Pipe& pipe, RequestHandler& handler, const ipc::Signal& stop);

    /// Returns when the client goes, the signal is set or the fault plan refuses. Throws what a greeting that is
    /// none does.
    void run();

private:
    void serveCalls(Role role);
    void serveNotifications(const nlohmann::json& hello, Role role);
    bool refused(Role role) const;
    /// False when the signal ended the pause.
    bool pause(Role role) const;

    ipc::Pipe& m_pipe;
    RequestHandler& m_handler;
    const ipc::Signal& m_stop;
};

} // namespace devhost::store
