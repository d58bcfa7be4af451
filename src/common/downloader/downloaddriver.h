#pragma once

#include <chrono>
#include <string>

namespace vx::tarn::common {

/// What a download needs of the system beside the internet API. Files are native handles of the caller's to close.
/// Any thread.
class IDownloadDriver {
public:
    virtual ~IDownloadDriver() = default;
    /// Makes the file or empties it; others may read and write it meanwhile. Null, with an error, when it can't.
    virtual void* createFile(const std::wstring& filename) = 0;
    /// False with an error.
    virtual bool writeFile(void* file, const void* data, unsigned long size) = 0;
    virtual void closeFile(void* file) noexcept = 0;
    /// Of this thread's last call to the system that failed, one to the internet API included.
    virtual unsigned long lastError() = 0;
    /// Blocks so long; not at all for 0 or less.
    virtual void pause(std::chrono::seconds length) = 0;
};

/// The real one.
class DownloadDriver : public IDownloadDriver {
public:
    void* createFile(const std::wstring& filename) override;
    bool writeFile(void* file, const void* data, unsigned long size) override;
    void closeFile(void* file) noexcept override;
    unsigned long lastError() override;
    void pause(std::chrono::seconds length) override;
};

} // namespace vx::tarn::common
