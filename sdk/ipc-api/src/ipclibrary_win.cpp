#include "ipc-api/ipclibrary.h"

#include "logging/nodestructor.h"

namespace vx::tarn::common {

IpcLibrary& IpcLibrary::ofProcess()
{
    // Threads of the library may outlast the static objects.
    static NoDestructor<IpcLibrary> library(loadIpcLibrary);
    return *library;
}

delayload::LoadResult loadIpcLibrary(IpcFunctions& functions)
{
    return delayload::loadInto(functions, bindIpcLibrary);
}

} // namespace vx::tarn::common
