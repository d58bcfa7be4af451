#include "store/server/server.h"

#include "ipc/instance.h"
#include "ipc/listener.h"
#include "logging/logstream.h"
#include "store/server/servedconnection.h"
#include "store/server/storefile.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

namespace devhost::store {

namespace {

vx::SharedHandle lockInstance(const std::wstring& instance)
{
    auto lock = ipc::lockPart(instance, L"store");
    if (!lock)
        throw StoreException(ErrorCode::NotAllowed, "store instance '" + vx::str::toUtf8(instance) + "'",
            "another server is running; stop it or choose another instance");
    return lock;
}

ValueStore load(const StoreFile& file, const std::wstring& path)
{
    const auto content = file.read();
    if (!content)
        return {};
    try {
        return ValueStore::parse(*content);
    } catch (const StoreException& exception) {
        throw StoreException(ErrorCode::SchemaViolation, vx::str::toUtf8(path),
            std::string("the store's file is damaged and was left as it is; repair it, or move it away to begin with "
                        "an empty store. ") +
                exception.what());
    }
}

} // namespace

// The order of the members is that of the start: the pipe last, when there is something to serve; the lock first, so
// that no second server even reads the file.
class Server::Running {
public:
    Running(const std::wstring& file, const std::wstring& instance)
        : m_lock(lockInstance(instance)), m_file(file),
          m_handler(load(m_file, file), [this](const std::string& content) { m_file.replace(content); }),
          m_listener(ipc::pipeName(instance, L"store"),
              [this](ipc::Pipe& pipe, const ipc::Signal& stop) { ServedConnection(pipe, m_handler, stop).run(); })
    {}

private:
    vx::SharedHandle m_lock;
    StoreFile m_file;
    RequestHandler m_handler;
    ipc::Listener m_listener;
};

Server::Server(std::wstring file, std::wstring instance) : m_file(std::move(file)), m_instance(std::move(instance)) {}

Server::~Server()
{
    stop();
}

void Server::start()
{
    if (m_running)
        return;
    try {
        m_running = std::make_unique<Running>(m_file, m_instance);
    } catch (const vx::Win32Exception& exception) {
        throwSystemFailure(exception.code(), ipc::pipeName(m_instance, L"store"));
    }
    vx::logging::LogStream(vx::logging::Level::Info) << "Store " << m_file << " is served as " << m_instance;
}

void Server::stop() noexcept
{
    m_running.reset();
}

} // namespace devhost::store
