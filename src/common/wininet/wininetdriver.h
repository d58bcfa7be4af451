#pragma once

#include "common/wininet/iwininetdriver.h"

namespace vx::tarn::common {

/// Forwards to the system. Stateless. Throws Win32Exception when the system's library is missing.
class WinInetDriver : public IWinInetDriver {
public:
    bool internetCloseHandle(void* hInternet) override;
    /// Traces its arguments, without the passwords in them.
    void* internetOpenUrl(void* hInternet, const wchar_t* lpszUrl, const wchar_t* lpszHeaders,
        unsigned long dwHeadersLength, unsigned long dwFlags) override;
    bool internetCanonicalizeUrl(
        const wchar_t* lpszUrl, wchar_t* lpszBuffer, unsigned long* lpdwBufferLength, unsigned long dwFlags) override;
    bool internetReadFile(void* hFile, void* lpBuffer, unsigned long dwNumberOfBytesToRead,
        unsigned long* lpdwNumberOfBytesRead) override;
    bool httpQueryInfo(void* hRequest, unsigned long dwInfoLevel, void* lpBuffer, unsigned long* lpdwBufferLength,
        unsigned long* lpdwIndex) override;
    bool httpQueryInfo(
        void* hRequest, unsigned long dwInfoLevel, void* lpBuffer, unsigned long* lpdwBufferLength) override;
};

} // namespace vx::tarn::common
