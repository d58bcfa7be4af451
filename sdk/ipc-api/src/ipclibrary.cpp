#include "ipc-api/ipclibrary.h"

#include "logging/logstream.h"

namespace vx::tarn::common {

const IpcFunctions* IpcLibrary::ensureIpcLoaded()
{
    if (m_isLoaded)
        return &m_functions;
    // Without the lock: what the library does while it is loaded may bring another use on another thread.
    IpcFunctions functions{};
    const delayload::LoadStatus status = m_load(functions).status;
    if (status != delayload::LoadStatus::Success) {
        logging::LogStream(logging::Level::Error)
            << "Failed to delay load IPC library. Status: " << static_cast<std::uint32_t>(status);
        return nullptr;
    }
    const std::lock_guard lock(m_mutex);
    if (!m_isLoaded) {
        m_functions = functions;
        m_isLoaded = true;
    }
    return &m_functions;
}

void bindIpcLibrary(delayload::LateBinder& binder, IpcFunctions& functions)
{
    const delayload::LateLibrary found = binder.load("QRLIPC.dll");
    found.call("_QRLIPCDelayLoadInitialize@0");
    found.bind(functions.runServer, "_QRLIPCRunServer@24");
    found.bind(functions.stopServer, "_QRLIPCStopServer@4");
    found.bind(functions.send, "_QRLIPCSend@28");
}

} // namespace vx::tarn::common
