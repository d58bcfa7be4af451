#pragma once

#include "common/downloader/idownloader.h"
#include "common/downloader/serveranswer.h"

#include <memory>
#include <optional>

namespace vx::registry {
class Registry;
}

namespace vx::tarn::common {

class IDownloadDriver;
class InternetProxy;
class IWinInetDriver;

/// Downloads over sessions that the proxy opens, a new one for each download, kept to the next one or the end.
class Downloader : public IDownloader {
public:
    Downloader(std::shared_ptr<InternetProxy> proxy, std::shared_ptr<IWinInetDriver> internet,
        std::shared_ptr<registry::Registry> registry, std::shared_ptr<IDownloadDriver> system);
    ~Downloader() override;
    Downloader(const Downloader&) = delete;
    Downloader& operator=(const Downloader&) = delete;

    ExitStatus download(
        const std::wstring& url, const std::wstring& filename, const HttpHeaders& requestHeaders) override;
    std::int32_t getHttpStatus() override { return m_answer.httpStatus; }
    HttpHeaders getHeaders() override { return m_answer.headers; }
    std::int32_t getAttempts() override { return m_attempts; }
    void setAttempts(std::int32_t count) override { m_attempts = count; }
    void setWaitSeconds(std::int64_t seconds) override { m_waitSeconds = seconds; }
    std::int64_t getWaitSeconds() override { return m_waitSeconds; }
    std::uint32_t getLastError() override { return m_lastError; }
    void setLastError(std::uint32_t code) override { m_lastError = code; }

private:
    /// What stays the same for all attempts of a download.
    struct Job {
        std::wstring shownUrl; ///< for the log
        std::wstring name;     ///< of the file, for the log
        std::wstring filename;
        std::wstring url; ///< for the system
        std::wstring headers;
    };

    bool openInternetConnection(const std::wstring& url);
    void closeInternetConnection();
    ExitStatus tryUntilDone(const Job& job);
    void waitBeforeRetry();
    /// Nothing: there may be a next one.
    std::optional<ExitStatus> attempt(const Job& job);
    void* openUrl(const Job& job);
    std::optional<ExitStatus> take(void* request, const Job& job);
    bool save(void* request, const Job& job);

    std::shared_ptr<InternetProxy> m_proxy;
    std::shared_ptr<IWinInetDriver> m_internet;
    std::shared_ptr<registry::Registry> m_registry;
    std::shared_ptr<IDownloadDriver> m_system;
    std::uint32_t m_lastError = 0;
    void* m_internetHandle = nullptr; ///< the session
    ServerAnswer m_answer;
    std::int32_t m_attempts = 3;
    std::int64_t m_waitSeconds = 30;
};

} // namespace vx::tarn::common
