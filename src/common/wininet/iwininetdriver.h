#pragma once

namespace vx::tarn::common {

/// The system's internet calls that a download makes, one each, under the system's names. Handles are the system's and
/// are not owned; lengths are in characters unless told otherwise. After null or false the thread's last error tells
/// why. No operation throws for what the system refuses. Any thread, but one at a time for a handle.
class IWinInetDriver {
public:
    virtual ~IWinInetDriver() = default;

    virtual bool internetCloseHandle(void* hInternet) = 0;
    /// Sends the request and blocks until the answer's headers are there. `lpszHeaders`: lines that each end in CR LF
    /// and a closing zero, which the trace reads up to, or null. Null when there is no answer.
    virtual void* internetOpenUrl(void* hInternet, const wchar_t* lpszUrl, const wchar_t* lpszHeaders,
        unsigned long dwHeadersLength, unsigned long dwFlags) = 0;
    /// `lpdwBufferLength`: the room of the buffer; on success the length of the text, for ERROR_INSUFFICIENT_BUFFER
    /// what it takes with the closing zero.
    virtual bool internetCanonicalizeUrl(
        const wchar_t* lpszUrl, wchar_t* lpszBuffer, unsigned long* lpdwBufferLength, unsigned long dwFlags) = 0;
    /// Bytes. Blocks. A read of none with success is the end.
    virtual bool internetReadFile(
        void* hFile, void* lpBuffer, unsigned long dwNumberOfBytesToRead, unsigned long* lpdwNumberOfBytesRead) = 0;
    /// `lpdwBufferLength` is in bytes: the room; on success the length without the closing zero, for
    /// ERROR_INSUFFICIENT_BUFFER what it takes. `lpdwIndex`: which header of that name, then the next; or null.
    virtual bool httpQueryInfo(void* hRequest, unsigned long dwInfoLevel, void* lpBuffer,
        unsigned long* lpdwBufferLength, unsigned long* lpdwIndex) = 0;
    /// The same for the first header.
    virtual bool httpQueryInfo(
        void* hRequest, unsigned long dwInfoLevel, void* lpBuffer, unsigned long* lpdwBufferLength) = 0;
};

} // namespace vx::tarn::common
