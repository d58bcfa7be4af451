#include "alert-api/alertlibrary.h"

namespace vx::alerts {

delayload::LoadResult loadAlertLibrary(AlertLibrary& library)
{
    delayload::LoadResult result{};
    const auto bind = [&library](delayload::LateBinder& binder) { bindAlertLibrary(binder, library); };
    delayload::delayLoadInitialize(delayload::ownComponent, bind, result);
    return result;
}

} // namespace vx::alerts
