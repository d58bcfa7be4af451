#pragma once

#include "common/downloader/httpheaders.h"
#include "common/exitstatus/exitstatus.h"

#include <cstdint>
#include <string>

namespace vx::tarn::common {

/// Fetches files by their URL. One thread.
class IDownloader {
public:
    virtual ~IDownloader() = default;
    /// Writes what the URL gives into the file, which is made or emptied for each answer that has a body to write.
    /// Blocks for all attempts and for the waits between them, which nothing ends.
    ///
    /// success: the file is written, or the server says that it has not changed and it is as before.
    /// resourceNotReady: the server asks to come back later; there was no further attempt.
    /// failedToDownload: no attempt went well; getLastError and the log tell why. The file may be written in part.
    ///
    /// May be called again. Throws what the session's proxy throws for settings that can't be used.
    virtual ExitStatus download(
        const std::wstring& url, const std::wstring& filename, const HttpHeaders& requestHeaders) = 0;
    /// Of the last answer; 0 before the first.
    virtual std::int32_t getHttpStatus() = 0;
    /// Of the last answer, names in lower case; empty when the last download had none.
    virtual HttpHeaders getHeaders() = 0;
    virtual std::int32_t getAttempts() = 0;
    /// For one download; with 0 or less every download fails.
    virtual void setAttempts(std::int32_t count) = 0;
    /// Before each attempt but the first.
    virtual void setWaitSeconds(std::int64_t seconds) = 0;
    virtual std::int64_t getWaitSeconds() = 0;
    /// The system's error of the last download's last attempt that had one, 0 without. An unwelcome status is none.
    virtual std::uint32_t getLastError() = 0;
    virtual void setLastError(std::uint32_t code) = 0;
};

} // namespace vx::tarn::common
