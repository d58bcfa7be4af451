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
    delayload::LoadResult result{};
    const auto bind = [&functions](delayload::LateBinder& binder) { bindIpcLibrary(binder, functions); };
    delayload::delayLoadInitialize(delayload::ownComponent, bind, result);
    return result;
}

} // namespace vx::tarn::common
