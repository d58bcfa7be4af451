#pragma once

#include "alert-api/vxalerterror.h"
#include "delay-load/bootstrap.h"
#include "delay-load/callingconvention.h"

namespace vx::alerts {

/// The functions of vx_alert_api_32.dll, VxAlertApi_ and the member's name with a capital. Texts end with a zero. The
/// library's own rules say on which threads, and for how long a call blocks.
struct AlertLibrary {
    using Error = VxAlertError_enum;

    /// Both texts are UTF-8 and borrowed for the call.
    Error(VX_CDECL* sendAlert)(const char* alertType, const char* alertData);
    /// The text stays the library's.
    const wchar_t*(VX_CDECL* errorAsString)(Error code);
};

/// Initialises the alert library and fills the table from it.
void bindAlertLibrary(delayload::LateBinder& binder, AlertLibrary& library);

/// Bootstraps the alert library into the table, which is complete on success only.
delayload::LoadResult loadAlertLibrary(AlertLibrary& library);

} // namespace vx::alerts
