#include "store/server/server.h"

#include "logging/logstream.h"
#include "store/protocol/pipe.h"
#include "store/server/listener.h"
#include "store/server/storefile.h"
#include "store/server/systemfailure.h"
#include "vxtl/str.h"

#include <windows.h>

namespace devhost::store {

namespace {

vx::SharedHandle lockInstance(const std::wstring& instance)
{
    // Its existence is the lock: the system takes it away when the process ends in whatever way.
    const std::wstring name = L"Global\\tarnhd." + instance + L".store";
    auto lock = std::make_shared<vx::KernelHandle>(CreateMutexW(nullptr, FALSE, name.c_str()));
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS || error == ERROR_ACCESS_DENIED)
        throw StoreException(ErrorCode::NotAllowed, "store instance '" + vx::str::toUtf8(instance) + "'",
            "another server is running; stop it or choose another instance");
    if (!lock->isValid())
        throwSystemFailure(error, name);
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

class Server::Running {
public:
    Running(const std::wstring& file, const std::wstring& instance)
        : m_lock(lockInstance(instance)), m_file(file),
          m_handler(load(m_file, file), [this](const std::string& content) { m_file.replace(content); }),
          m_listener(pipeName(instance), m_handler)
    {}

private:
    vx::SharedHandle m_lock;
    StoreFile m_file;
    RequestHandler m_handler;
    Listener m_listener;
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
    m_running = std::make_unique<Running>(m_file, m_instance);
    vx::logging::LogStream(vx::logging::Level::Info) << "Store " << m_file << " is served as " << m_instance;
}

void Server::stop() noexcept
{
    m_running.reset();
}

} // namespace devhost::store
