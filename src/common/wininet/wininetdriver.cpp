#include "common/wininet/wininetdriver.h"

#include "logging/logstream.h"
#include "vxtl/credentials.h"

#include <windows.h>

#include <wininet.h>

namespace vx::tarn::common {

namespace {

std::wstring_view orEmpty(const wchar_t* text)
{
    return text ? text : L"";
}

} // namespace

bool WinInetDriver::internetCloseHandle(void* hInternet)
{
    return InternetCloseHandle(hInternet) != FALSE;
}

void* WinInetDriver::internetOpenUrl(void* hInternet, const wchar_t* lpszUrl, const wchar_t* lpszHeaders,
    unsigned long dwHeadersLength, unsigned long dwFlags)
{
    VX_LOG_SCOPE();
    if (isEnabled(logging::Level::Debug))
        logging::logValues("hInternet, lpszUrl, lpszHeaders, dwHeadersLength, dwFlags", hInternet,
            withoutPasswords(orEmpty(lpszUrl)), withoutCredentials(orEmpty(lpszHeaders)), dwHeadersLength, dwFlags);
    return InternetOpenUrlW(hInternet, lpszUrl, lpszHeaders, dwHeadersLength, dwFlags, 0);
}

bool WinInetDriver::internetCanonicalizeUrl(
    const wchar_t* lpszUrl, wchar_t* lpszBuffer, unsigned long* lpdwBufferLength, unsigned long dwFlags)
{
    return InternetCanonicalizeUrlW(lpszUrl, lpszBuffer, lpdwBufferLength, dwFlags) != FALSE;
}

bool WinInetDriver::internetReadFile(
    void* hFile, void* lpBuffer, unsigned long dwNumberOfBytesToRead, unsigned long* lpdwNumberOfBytesRead)
{
    return InternetReadFile(hFile, lpBuffer, dwNumberOfBytesToRead, lpdwNumberOfBytesRead) != FALSE;
}

bool WinInetDriver::httpQueryInfo(void* hRequest, unsigned long dwInfoLevel, void* lpBuffer,
    unsigned long* lpdwBufferLength, unsigned long* lpdwIndex)
{
    return HttpQueryInfoW(hRequest, dwInfoLevel, lpBuffer, lpdwBufferLength, lpdwIndex) != FALSE;
}

bool WinInetDriver::httpQueryInfo(
    void* hRequest, unsigned long dwInfoLevel, void* lpBuffer, unsigned long* lpdwBufferLength)
{
    return httpQueryInfo(hRequest, dwInfoLevel, lpBuffer, lpdwBufferLength, nullptr);
}

} // namespace vx::tarn::common
