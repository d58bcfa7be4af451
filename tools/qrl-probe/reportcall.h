#pragma once

#include "qrl-plugin/hostrecords.h"

namespace tools::qrlprobe {

/// Calls the host's report function and gives how many bytes it took off the stack: 8, by its convention. Comes back
/// well whatever it took.
std::uint32_t callReport(vx::qrl::ReportPluginStateFunction report, const char* name, std::uint32_t state);

} // namespace tools::qrlprobe
