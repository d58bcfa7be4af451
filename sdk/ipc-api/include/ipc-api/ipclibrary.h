#pragma once

#include "delay-load/bootstrap.h"
#include "delay-load/callingconvention.h"
#include "vxtl/lock.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace vx::tarn::common {

/// Called by the library for each message, on a thread of its own. `data` is not terminated and, like `message`, lent
/// for the call; `context` is what runServer was given.
using IpcCallback = std::int32_t VX_STDCALL(
    std::uint32_t messageType, const void* data, std::uint32_t dataSize, const void* message, void* context);

/// The functions of QRLIPC.dll, _QRLIPC and the member's name with a capital. All give 0 or an error code of the
/// library's; what `access` and `owner` mean is the library's too. Texts end with a zero. The zeros named `reserved`
/// have no known use.
struct IpcFunctions {
    /// Writes the server's handle, which is never 0.
    std::uint32_t(VX_STDCALL* runServer)(std::uint32_t* serverHandle, const char* channelName, std::uint32_t access,
        IpcCallback* callback, void* context, std::uint32_t reserved);
    std::uint32_t(VX_STDCALL* stopServer)(std::uint32_t serverHandle);
    /// `dataSize` in bytes.
    std::uint32_t(VX_STDCALL* send)(const char* channelName, std::uint32_t owner, std::uint32_t messageType,
        const void* data, std::uint32_t dataSize, std::uint32_t reserved, std::uint32_t reservedToo);
};

/// What server and client give where the library can't be loaded; none of the library's codes.
inline constexpr std::uint32_t noIpcLibrary = 1'000'000;

/// The library, found at first use. A search that failed is made again at the next use. Any thread.
class IpcLibrary {
public:
    using Load = std::function<delayload::LoadResult(IpcFunctions& functions)>;

    /// `load` fills the table completely or fails.
    explicit IpcLibrary(Load load) : m_load(std::move(load)) {}
    IpcLibrary(const IpcLibrary&) = delete;
    IpcLibrary& operator=(const IpcLibrary&) = delete;

    /// The one of the process.
    static IpcLibrary& ofProcess();

    /// Null, with a line in the log, when the library can't be loaded. What it gives stays.
    const IpcFunctions* ensureIpcLoaded();

private:
    const Load m_load;
    sync::Mutex m_mutex;
    IpcFunctions m_functions{}; ///< written once, under m_mutex, before m_isLoaded is set
    std::atomic<bool> m_isLoaded{false};
};

/// Initialises the library and fills the table from it.
void bindIpcLibrary(delayload::LateBinder& binder, IpcFunctions& functions);

/// Bootstraps the library into the table.
delayload::LoadResult loadIpcLibrary(IpcFunctions& functions);

} // namespace vx::tarn::common
