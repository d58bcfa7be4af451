#pragma once

#include "qrl-probe/probe.h"

namespace tools::qrlprobe {

/// The functions that the host calls, which pass on to the probe of this load.
Callbacks entries() noexcept;

/// Made when the library is attached, there for as long as it is loaded; not destroyed by itself.
extern Probe* loadedProbe;

} // namespace tools::qrlprobe
