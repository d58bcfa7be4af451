#pragma once

#include <memory>
#include <string>

namespace devhost::store {

/// Serves one store over the local pipe of an instance, open to the same user and to administrators
/// only. Owns its threads and one file, which it replaces atomically at each change. Any number of
/// clients; every call of one connection runs on that connection's thread.
///
/// Writing keeps a value's type (InvalidType otherwise; remove it first to change the type). Subscribers
/// are told of every write that changes the value and of removals, the writer's own process
/// included, after the change is in the file and visible to readers. Writing an equal value succeeds,
/// tells nobody and leaves the file alone.
class Server {
public:
    /// Neither touches the file nor the system. `instance` is the last part but one of the pipe's name.
    Server(std::wstring file, std::wstring instance);
    /// Stops. Not to be destroyed by one of its own threads.
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Reads the file (a missing one is an empty store) and serves; clients can connect when it
    /// returns. Throws StoreException with a line that says what to do: NotAllowed when another server
    /// has the instance or the file, SchemaViolation when the file is damaged (it is left untouched),
    /// AccessDenied or Unknown when the system refuses. After a failure start may be tried again.
    void start();
    /// Closes all connections and joins the threads; what was written is in the file. Without effect
    /// when not started. Blocks until a call that is being carried out is done.
    void stop() noexcept;

    const std::wstring& file() const noexcept { return m_file; }
    const std::wstring& instance() const noexcept { return m_instance; }

private:
    class Running;

    std::wstring m_file;
    std::wstring m_instance;
    std::unique_ptr<Running> m_running;
};

} // namespace devhost::store
