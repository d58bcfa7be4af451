#include "meridia-settings/qrlmeridiaapi.h"

#include "logging/logstream.h"

namespace vx::meridia {

delayload::LoadStatus loadQrlMeridiaApi(QrlMeridiaApi& api)
{
    const delayload::LoadResult result = delayload::loadInto(api, bindQrlMeridiaApi);
    if (result.status != delayload::LoadStatus::Success)
        logging::LogStream(logging::Level::Error)
            << "Failed to delay load QRL Meridia library. Status: " << static_cast<std::uint32_t>(result.status)
            << ", library: " << result.libraryName() << ", function: " << result.functionName();
    return result.status;
}

} // namespace vx::meridia
