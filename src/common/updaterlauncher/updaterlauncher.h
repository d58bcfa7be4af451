#pragma once

#include "common/event/event.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "common/utils/objectnames.h"
#include "vxtl/globalmutex.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace vx::tarn::common {

/// Names and times of a launcher; the defaults are the product's.
struct UpdaterLauncherOptions {
    std::wstring mutexName = startMutexName;
    std::wstring eventName = startEventName;
    std::chrono::milliseconds openTimeout = std::chrono::seconds(60);
    std::chrono::milliseconds openPause = std::chrono::milliseconds(100);
};

/// Sets the start event, which another object makes and waits on. Any thread: the mutex, shared with the
/// launchers of all processes, guards a start and the time of the last one.
class UpdaterLauncher : public IUpdaterLauncher {
public:
    /// Blocks until the event can be opened, at most for the given time. `stopEvent` ends that
    /// wait and those for the mutex, as in GlobalMutex. Throws Win32Exception and sync::StoppedException.
    explicit UpdaterLauncher(
        const UpdaterLauncherOptions& options = {}, const std::shared_ptr<const IWaitable>& stopEvent = nullptr);

    void startScan() override;
    void startScanIfOlderThan(std::int64_t seconds) override;
    /// Takes no mutex; the two above call it under theirs.
    void startScanAt(std::int64_t time) override;

private:
    static std::shared_ptr<Event> openStartEvent(const UpdaterLauncherOptions& options, const IWaitable* stopEvent);

    sync::GlobalMutex m_mutex;
    std::int64_t m_lastStart = 0; ///< ticks of 100 ns since the Unix epoch; guarded by m_mutex
    std::shared_ptr<Event> m_event;
};

} // namespace vx::tarn::common
