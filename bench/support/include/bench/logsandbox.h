#pragma once

#include "bench/datafolder.h"

namespace bench {

/// More than any program here writes; kilobytes.
inline constexpr unsigned long neverFull = 4'000'000;

/// A root folder of its own for the log files of this program, and the logger's configuration in the
/// registry: both empty at the start and gone at the end. Child processes inherit the place.
class LogSandbox {
public:
    LogSandbox();
    ~LogSandbox();
    LogSandbox(const LogSandbox&) = delete;
    LogSandbox& operator=(const LogSandbox&) = delete;

    const std::filesystem::path& root() const { return m_folder.path(); }
    /// Folder that holds the log of this name1.
    std::filesystem::path folder(const wchar_t* name1) const;
    /// For all logs; kilobytes.
    static void configure(unsigned long maxSizeKb, unsigned long rotateCount);

private:
    DataFolder m_folder;
};

} // namespace bench
