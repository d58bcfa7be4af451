#pragma once

#include "bench/datafolder.h"

/// A root folder of its own for the log files of this program, and the logger's configuration in the
/// registry: both empty at the start and gone at the end. Child processes inherit the place.
class Sandbox {
public:
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    /// Folder that holds the log of this name1.
    std::filesystem::path folder(const wchar_t* name1) const;
    /// For all logs; kilobytes.
    static void configure(unsigned long maxSizeKb, unsigned long rotateCount);

private:
    bench::DataFolder m_folder;
};
