// There is no client library outside Windows.

#include "meridia-settings/qrlmeridiaapi.h"

namespace vx::meridia {

delayload::LoadStatus loadQrlMeridiaApi(QrlMeridiaApi&)
{
    return delayload::LoadStatus::ModuleNotFound;
}

void keepModuleLoaded() noexcept {}

} // namespace vx::meridia
