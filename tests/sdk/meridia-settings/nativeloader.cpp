// There is no client library outside Windows.

#include "meridia-settings/qrlmeridiaapi.h"

void vx::meridia::keepModuleLoaded() noexcept {}
