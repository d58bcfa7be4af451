#pragma once

#include "common/exitstatus/exitstatus.h"

namespace vx::tarn::common {

class IDownloadDriver;
class IWinInetDriver;

/// Writes the body of an answer into a file as it comes, with an empty write at its end. badArgument without a request
/// or file, failedToDownload when the system can't read or write; both logged.
ExitStatus downloadToFile(IWinInetDriver& internet, IDownloadDriver& system, void* request, void* file);

} // namespace vx::tarn::common
