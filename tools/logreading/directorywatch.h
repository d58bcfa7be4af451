#pragma once

#include <filesystem>

namespace logreading {

/// Waits for changes of the files in a folder. One thread.
class DirectoryWatch {
public:
    enum class Result { Changed, TimedOut, Stopped };

    /// The folder may be missing: then every wait takes its full time, and each looks for it anew.
    explicit DirectoryWatch(std::filesystem::path folder);
    ~DirectoryWatch();
    DirectoryWatch(const DirectoryWatch&) = delete;
    DirectoryWatch& operator=(const DirectoryWatch&) = delete;

    /// Blocks until a file was written, made, renamed or removed since the last wait, the event `stop` is set, or
    /// the time is over. The native event is borrowed; null for none.
    Result wait(void* stop, unsigned long timeoutMs);

private:
    void open();
    void close();

    std::filesystem::path m_folder;
    void* m_notification = nullptr;
};

} // namespace logreading
