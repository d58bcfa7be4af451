#include "common/downloader/downloader.h"

#include "common/downloader/canonicalizeurl.h"
#include "common/downloader/downloaddriver.h"
#include "common/downloader/downloadtofile.h"
#include "common/downloader/useragent.h"
#include "common/internetproxy/internetproxy.h"
#include "common/wininet/iwininetdriver.h"
#include "logging/logstream.h"
#include "vxtl/credentials.h"
#include "vxtl/registry.h"
#include "vxtl/scopeexit.h"

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

namespace {

constexpr unsigned long invalidCertificateAuthority = 12045;

constexpr std::int32_t statusNotReady = 202;
constexpr std::int32_t statusNotModified = 304;

std::wstring getFilenameFromUrl(const std::wstring& url)
{
    return url.substr(url.rfind(L'/') + 1); // nothing found is -1
}

std::wstring nameForLog(const std::wstring& filename, const std::wstring& url)
{
    const std::wstring name = filename.substr(filename.find_last_of(L"\\/") + 1);
    return name.empty() ? getFilenameFromUrl(url) : name;
}

bool hasBody(std::int32_t status)
{
    return status >= 200 && status <= 299;
}

} // namespace

Downloader::Downloader(std::shared_ptr<InternetProxy> proxy, std::shared_ptr<IWinInetDriver> internet,
    std::shared_ptr<registry::Registry> registry, std::shared_ptr<IDownloadDriver> system)
    : m_proxy(std::move(proxy)), m_internet(std::move(internet)), m_registry(std::move(registry)),
      m_system(std::move(system))
{}

Downloader::~Downloader()
{
    closeInternetConnection();
}

ExitStatus Downloader::download(
    const std::wstring& url, const std::wstring& filename, const HttpHeaders& requestHeaders)
{
    VX_LOG_SCOPE();
    const std::wstring shownUrl = withoutPasswords(url);
    Job job{shownUrl, nameForLog(filename, shownUrl), filename, url, headerText(requestHeaders)};
    logging::logValues("url, filename", shownUrl, filename);
    m_lastError = 0;
    m_answer.headers.clear();
    if (!openInternetConnection(url)) {
        LogStream(Level::Error) << "Failed to download. Internet connection wasn't initialized.";
        return exitstatus::failedToDownload;
    }
    LogStream(Level::Info) << "Downloading started from " << job.shownUrl << " to a local file " << job.name;
    if (!canonicalizeUrl(*m_internet, *m_system, job.url)) {
        LogStream(Level::Error) << "Failed to canonicalize url: " << job.shownUrl;
        return exitstatus::failedToDownload;
    }
    return tryUntilDone(job);
}

bool Downloader::openInternetConnection(const std::wstring& url)
{
    closeInternetConnection();
    m_internetHandle = m_proxy->openInternetConnection(userAgent(*m_registry), url);
    if (!m_internetHandle)
        LogStream(Level::Error) << "Failed to call openInternetConnection. GetLastError() = " << m_system->lastError();
    return m_internetHandle;
}

void Downloader::closeInternetConnection()
{
    VX_LOG_SCOPE();
    if (m_internetHandle)
        m_internet->internetCloseHandle(std::exchange(m_internetHandle, nullptr));
}

ExitStatus Downloader::tryUntilDone(const Job& job)
{
    for (std::int32_t i = 0; i < m_attempts; ++i) {
        LogStream(Level::Debug) << "Downloading attempt: " << i + 1;
        if (i > 0)
            waitBeforeRetry();
        if (const auto result = attempt(job))
            return *result;
    }
    return exitstatus::failedToDownload;
}

void Downloader::waitBeforeRetry()
{
    LogStream(Level::Debug) << "Waiting for timeout: " << m_waitSeconds << " second(s)";
    m_system->pause(std::chrono::seconds(m_waitSeconds));
}

std::optional<ExitStatus> Downloader::attempt(const Job& job)
{
    void* const request = openUrl(job);
    if (!request)
        return std::nullopt;
    const ScopeExit close([&] { m_internet->internetCloseHandle(request); });
    if (const ExitStatus queried = queryServerHeaders(*m_internet, *m_system, request, m_answer);
        queried != exitstatus::success) {
        m_lastError = m_system->lastError();
        LogStream(Level::Error) << "Failed to query server headers. Status = " << queried.code();
        return std::nullopt;
    }
    LogStream(Level::Info) << "Answer HTTP Status code: " << m_answer.httpStatus;
    return take(request, job);
}

void* Downloader::openUrl(const Job& job)
{
    void* const request = m_internet->internetOpenUrl(m_internetHandle, job.url.c_str(),
        job.headers.empty() ? nullptr : job.headers.c_str(), static_cast<unsigned long>(job.headers.size()), 0);
    if (request)
        return request;
    m_lastError = m_system->lastError();
    LogStream(Level::Error) << "Failed to establish a connection to the url " << '"' << job.shownUrl << '"'
                            << ". InternetOpenUrl failed. GetLastError() = " << m_lastError;
    if (m_lastError == invalidCertificateAuthority)
        LogStream(Level::Error) << "Failed to download because of ERROR_INTERNET_INVALID_CA.";
    return nullptr;
}

std::optional<ExitStatus> Downloader::take(void* request, const Job& job)
{
    const std::int32_t status = m_answer.httpStatus;
    if (status == statusNotModified) {
        LogStream(Level::Info) << "The file " << job.shownUrl
                               << " hasn't modified since last download. Skip downloading";
        return exitstatus::success;
    }
    if (status == statusNotReady) {
        LogStream(Level::Info) << "The file " << job.shownUrl << " isn't ready for downloading";
        return exitstatus::resourceNotReady;
    }
    if (!hasBody(status)) {
        LogStream(Level::Error) << "Failed to download because of server response: " << status;
        return std::nullopt;
    }
    return save(request, job) ? std::optional(exitstatus::success) : std::nullopt;
}

bool Downloader::save(void* request, const Job& job)
{
    void* const file = m_system->createFile(job.filename);
    if (!file) {
        m_lastError = m_system->lastError();
        LogStream(Level::Error) << "Failed to create a file " << job.name << ". GetLastError() = " << m_lastError;
        return false;
    }
    const ScopeExit close([&] { m_system->closeFile(file); });
    LogStream(Level::Debug) << "Downloading to file started: " << job.name;
    if (downloadToFile(*m_internet, *m_system, request, file) == exitstatus::success)
        return true;
    m_lastError = m_system->lastError();
    LogStream(Level::Error) << "Failed to download " << '"' << job.shownUrl << '"' << " to a file " << job.name << ".";
    return false;
}

} // namespace vx::tarn::common
