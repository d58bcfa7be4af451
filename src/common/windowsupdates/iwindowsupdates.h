#pragma once

#include "common/exitstatus/exitstatus.h"
#include "vxtl/clock.h"

#include <limits>

namespace vx::tarn::common {

/// In place of a date where there has been no installation.
inline constexpr Ticks neverInstalled = std::numeric_limits<Ticks>::min();

/// The automatic updates of Windows. One thread at a time, which is in an apartment; for the first three that is to be
/// a single-threaded one, see IGroupPolicy. What fails in these is in the log alone; their result is success.
class IWindowsUpdates {
public:
    virtual ~IWindowsUpdates() = default;
    /// Switches the updates off and keeps what the administrator had set.
    virtual ExitStatus pause() = 0;
    /// Puts back what pause of this object has found; without one the updates are switched on.
    virtual ExitStatus resume() = 0;
    /// Puts back what is kept, in place of a resume that never came.
    virtual ExitStatus restore() = 0;
    /// When updates were last installed, to the millisecond; neverInstalled when never, or when that can't be found
    /// out. Throws ComException when the system fails to answer.
    virtual Ticks getLastInstallationDate() = 0;
};

} // namespace vx::tarn::common
