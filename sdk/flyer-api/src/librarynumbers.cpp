#include "librarynumbers.h"

#include <typeinfo>

namespace vx::flyers {

std::int32_t libraryFlyerType(std::int32_t type)
{
    switch (type) {
    case 0: return 2;
    case 1: return 3;
    case 2: return 1;
    case 3: return 0;
    }
    throw std::bad_cast();
}

std::int32_t libraryActionType(std::int32_t type)
{
    switch (type) {
    case 1: return 1;
    case 2: return 2;
    case 3: return 0;
    case 4: return 3;
    }
    throw std::bad_cast();
}

} // namespace vx::flyers
