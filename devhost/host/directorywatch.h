#pragma once

#include "ipc/signal.h"

#include <filesystem>

namespace devhost::host {

/// Waits for changes of the files in a folder. One thread.
class DirectoryWatch {
public:
    enum class Result { Changed, TimedOut, Stopped };

    /// The folder may be missing: then every wait takes its full time, and each looks for it anew.
    explicit DirectoryWatch(std::filesystem::path folder);
    ~DirectoryWatch();
    DirectoryWatch(const DirectoryWatch&) = delete;
    DirectoryWatch& operator=(const DirectoryWatch&) = delete;

    /// Blocks until a file was written, made, renamed or removed since the last wait, `stop` is set, or
    /// the time is over.
    Result wait(const ipc::Signal& stop, unsigned long timeoutMs);

private:
    void open();

    std::filesystem::path m_folder;
    void* m_notification = nullptr;
};

} // namespace devhost::host
