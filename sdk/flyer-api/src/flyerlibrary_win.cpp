#include "flyer-api/flyerlibrary.h"

namespace vx::flyers {

delayload::LoadResult loadFlyerLibrary(FlyerLibrary& library)
{
    return delayload::loadInto(library, bindFlyerLibrary);
}

} // namespace vx::flyers
