#include "alert-api/alertlibrary.h"

namespace vx::alerts {

void bindAlertLibrary(delayload::LateBinder& binder, AlertLibrary& library)
{
    const delayload::LateLibrary found = binder.load("vx_alert_api_32.dll");
    found.call("VxAlertApi_DelayLoadInitialize");
    found.bind(library.sendAlert, "VxAlertApi_SendAlert");
    found.bind(library.errorAsString, "VxAlertApi_ErrorAsString");
}

} // namespace vx::alerts
