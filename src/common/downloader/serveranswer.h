#pragma once

#include "common/downloader/httpheaders.h"
#include "common/exitstatus/exitstatus.h"

#include <cstdint>

namespace vx::tarn::common {

class IDownloadDriver;
class IWinInetDriver;

/// What a server says before the body.
struct ServerAnswer {
    std::int32_t httpStatus = 0;
    HttpHeaders headers;
};

/// Fills the answer to a request that was sent. failedToDownload, logged, when the system does not give all of it: the
/// headers may be there by then, the status is as before.
ExitStatus queryServerHeaders(IWinInetDriver& internet, IDownloadDriver& system, void* request, ServerAnswer& answer);

} // namespace vx::tarn::common
