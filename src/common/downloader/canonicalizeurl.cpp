#include "common/downloader/canonicalizeurl.h"

#include "common/downloader/downloaddriver.h"
#include "common/wininet/iwininetdriver.h"
#include "logging/logstream.h"

#include <utility>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

namespace {

constexpr unsigned long usualSize = 1024;
constexpr unsigned long insufficientBuffer = 122;

bool canonicalizeInto(IWinInetDriver& internet, const std::wstring& url, std::wstring& buffer)
{
    unsigned long size = static_cast<unsigned long>(buffer.size());
    const bool done = internet.internetCanonicalizeUrl(url.c_str(), buffer.data(), &size, 0);
    buffer.resize(size);
    return done;
}

} // namespace

bool canonicalizeUrl(IWinInetDriver& internet, IDownloadDriver& system, std::wstring& url)
{
    std::wstring buffer(usualSize, L'\0');
    if (!canonicalizeInto(internet, url, buffer)) {
        if (const unsigned long error = system.lastError(); error != insufficientBuffer) {
            LogStream(Level::Error) << "Failed to get buffer size to canonicalize url. Last error code: " << error;
            return false;
        }
        // The buffer has now the size that the system asked for.
        if (!canonicalizeInto(internet, url, buffer)) {
            LogStream(Level::Error) << "Failed to canonicalize url. Last error code: " << system.lastError();
            return false;
        }
    }
    url = std::move(buffer);
    return true;
}

} // namespace vx::tarn::common
