// There is no client library outside Windows.

#include "meridia-settings/qrlmeridiaapi.h"

namespace vx::meridia {

delayload::LoadStatus loadQrlMeridiaApi(QrlMeridiaApi&)
{
    return delayload::LoadStatus::ModuleNotFound;
}

} // namespace vx::meridia
