#include "alert-api/alertlibrary.h"

namespace vx::alerts {

delayload::LoadResult loadAlertLibrary(AlertLibrary& library)
{
    return delayload::loadInto(library, bindAlertLibrary);
}

} // namespace vx::alerts
