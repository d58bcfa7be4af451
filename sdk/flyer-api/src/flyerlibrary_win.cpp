#include "flyer-api/flyerlibrary.h"

namespace vx::flyers {

delayload::LoadResult loadFlyerLibrary(FlyerLibrary& library)
{
    delayload::LoadResult result{};
    const auto bind = [&library](delayload::LateBinder& binder) { bindFlyerLibrary(binder, library); };
    delayload::delayLoadInitialize(delayload::ownComponent, bind, result);
    return result;
}

} // namespace vx::flyers
