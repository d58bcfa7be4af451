#pragma once

#include "common/event/event.h"
#include "common/registrykeynotifier/registrykeynotifier.h"

#include <mutex>

namespace devhost::service {

/// The Windows Update service as the program wuservice.exe plays it: does nothing, and answers a stop as is kept for it
/// in the registry. Made, used and destroyed on the thread that the system gives to the service; the system's own
/// thread tells it of controls.
class PlayedService {
public:
    /// Announces itself to the system, for the rest of the process's life. Throws Win32Exception.
    PlayedService();
    PlayedService(const PlayedService&) = delete;
    PlayedService& operator=(const PlayedService&) = delete;

    /// Blocks until the service has stopped. Throws Win32Exception.
    void run();

private:
    enum class Stops { Accepted, Refused };

    static unsigned long __stdcall onControl(unsigned long control, unsigned long type, void* data, void* service);
    void awaitStop();
    void awaitStopTime();
    void watch();
    void beginStop();
    void reportRunning(Stops stops);
    void report(unsigned long state, unsigned long accepted = 0) const;

    std::mutex m_mutex;
    bool m_stopping = false;  ///< guarded by m_mutex, as is what is reported until the stop
    void* m_status = nullptr; ///< native, the system's
    vx::tarn::common::RegistryKeyNotifier m_notifier;
    const std::shared_ptr<vx::tarn::common::Event> m_stop = vx::tarn::common::Event::createManualResetEvent({}, false);
    const std::shared_ptr<vx::tarn::common::Event> m_changed = vx::tarn::common::Event::createAutoResetEvent({}, false);
};

} // namespace devhost::service
