#pragma once

#include <cstdint>

namespace vx::tarn::common {

/// Asks for an agent start by setting the shared start event. What takes the scan mutex blocks while another launcher
/// holds it, and throws sync::StoppedException when the program is stopped meanwhile.
class IUpdaterLauncher {
public:
    virtual ~IUpdaterLauncher() = default;
    /// Sets the event now. Throws Win32Exception.
    virtual void startScan() = 0;
    /// Sets the event when this object's last start lies more than `seconds` back; the first call always
    /// does for any sensible value. Throws Win32Exception.
    virtual void startScanIfOlderThan(std::int64_t seconds) = 0;
    /// Sets the event and takes `time`, in 100-nanosecond ticks since the Unix epoch, for the last start.
    virtual void startScanAt(std::int64_t time) = 0;
};

} // namespace vx::tarn::common
