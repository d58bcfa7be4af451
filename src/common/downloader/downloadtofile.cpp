#include "common/downloader/downloadtofile.h"

#include "common/downloader/downloaddriver.h"
#include "common/wininet/iwininetdriver.h"
#include "logging/logstream.h"

#include <cstddef>
#include <memory>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

namespace {

constexpr unsigned long bufferSize = 0x40000;

bool isHandle(const void* handle)
{
    return handle && handle != reinterpret_cast<void*>(-1);
}

} // namespace

ExitStatus downloadToFile(IWinInetDriver& internet, IDownloadDriver& system, void* request, void* file)
{
    if (!request || !isHandle(file)) {
        LogStream(Level::Error) << "Downloader::downloadToFile() invalid method argument.";
        return exitstatus::badArgument;
    }
    const auto buffer = std::make_unique_for_overwrite<std::byte[]>(bufferSize);
    for (;;) {
        unsigned long read = 0;
        if (!internet.internetReadFile(request, buffer.get(), bufferSize, &read)) {
            LogStream(Level::Error) << "Failed to InternetReadFile. GetLastError() = " << system.lastError();
            return exitstatus::failedToDownload;
        }
        if (!system.writeFile(file, buffer.get(), read)) {
            LogStream(Level::Error) << "Failed to WriteFile. GetLastError() = " << system.lastError();
            return exitstatus::failedToDownload;
        }
        if (read == 0)
            return exitstatus::success;
    }
}

} // namespace vx::tarn::common
