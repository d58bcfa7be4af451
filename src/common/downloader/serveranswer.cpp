#include "common/downloader/serveranswer.h"

#include "common/downloader/downloaddriver.h"
#include "common/wininet/iwininetdriver.h"
#include "logging/logstream.h"

#include <algorithm>
#include <cwchar>
#include <optional>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

namespace {

constexpr unsigned long statusCode = 19;
constexpr unsigned long rawHeadersCrLf = 22;
constexpr unsigned long headerNotFound = 12150;
constexpr unsigned long firstSize = 2048; // bytes, half of the first buffer

/// `size` in bytes: of the buffer's part that may be used, then what the system says.
std::optional<std::wstring> query(
    IWinInetDriver& internet, void* request, unsigned long what, std::wstring buffer, unsigned long& size)
{
    if (!internet.httpQueryInfo(request, what, buffer.data(), &size))
        return std::nullopt;
    buffer.resize(std::min<std::size_t>(size / sizeof(wchar_t), buffer.size()));
    return buffer;
}

std::optional<std::wstring> queryRawHeaders(IWinInetDriver& internet, IDownloadDriver& system, void* request)
{
    unsigned long size = firstSize;
    LogStream(Level::Debug) << "Buffer size: " << size;
    auto text = query(internet, request, rawHeadersCrLf, std::wstring(firstSize, L'\0'), size);
    if (text)
        return text;
    if (system.lastError() == headerNotFound)
        return std::wstring();
    text = query(internet, request, rawHeadersCrLf, std::wstring(size / sizeof(wchar_t) + 1, L'\0'), size);
    if (!text)
        LogStream(Level::Error) << "Failed to retrieve the server headers. Last error code: " << system.lastError();
    return text;
}

} // namespace

ExitStatus queryServerHeaders(IWinInetDriver& internet, IDownloadDriver& system, void* request, ServerAnswer& answer)
{
    answer.headers.clear();
    const auto headers = queryRawHeaders(internet, system, request);
    if (!headers)
        return exitstatus::failedToDownload;
    answer.headers = parseHeaders(*headers);
    std::wstring digits(32, L'\0');
    unsigned long size = static_cast<unsigned long>(digits.size() * sizeof(wchar_t));
    const auto status = query(internet, request, statusCode, std::move(digits), size);
    if (!status) {
        LogStream(Level::Error) << "Failed to query status code. Last error code: " << system.lastError();
        return exitstatus::failedToDownload;
    }
    answer.httpStatus = static_cast<std::int32_t>(std::wcstol(status->c_str(), nullptr, 10));
    return exitstatus::success;
}

} // namespace vx::tarn::common
