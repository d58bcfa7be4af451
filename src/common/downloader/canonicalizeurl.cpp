#include "common/downloader/canonicalizeurl.h"

#include "common/downloader/downloaddriver.h"
#include "common/wininet/iwininetdriver.h"
#include "logging/logstream.h"

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

namespace {

constexpr unsigned long usualSize = 1024;
constexpr unsigned long insufficientBuffer = 122;

bool canonicalizeInto(IWinInetDriver& internet, const std::wstring& url, std::wstring& buffer, unsigned long& size)
{
    size = static_cast<unsigned long>(buffer.size());
    return internet.internetCanonicalizeUrl(url.c_str(), buffer.data(), &size, 0);
}

} // namespace

bool canonicalizeUrl(IWinInetDriver& internet, IDownloadDriver& system, std::wstring& url)
{
    std::wstring buffer(usualSize, L'\0');
    unsigned long size = 0;
    if (!canonicalizeInto(internet, url, buffer, size)) {
        // The size means something with this error only.
        if (const unsigned long error = system.lastError(); error != insufficientBuffer) {
            LogStream(Level::Error) << "Failed to get buffer size to canonicalize url. Last error code: " << error;
            return false;
        }
        buffer.resize(size);
        if (!canonicalizeInto(internet, url, buffer, size)) {
            LogStream(Level::Error) << "Failed to canonicalize url. Last error code: " << system.lastError();
            return false;
        }
    }
    url.assign(buffer, 0, size);
    return true;
}

} // namespace vx::tarn::common
