#include "meridia-settings/qrlmeridiaapi.h"

#include "logging/logstream.h"

namespace vx::meridia {

delayload::LoadStatus loadQrlMeridiaApi(QrlMeridiaApi& api)
{
    delayload::LoadResult result{};
    const auto bind = [&api](delayload::LateBinder& binder) { bindQrlMeridiaApi(binder, api); };
    const delayload::LoadStatus status = delayload::delayLoadInitialize(delayload::ownComponent, bind, result);
    if (status != delayload::LoadStatus::Success)
        logging::LogStream(logging::Level::Error)
            << "Failed to delay load QRL Meridia library. Status: " << static_cast<std::uint32_t>(status)
            << ", library: " << result.libraryName() << ", function: " << result.functionName();
    return status;
}

} // namespace vx::meridia
