#pragma once

#include <filesystem>

namespace bench {

/// An empty folder of this program's own that stands in for the system's ProgramData, for child processes too. Gone
/// at the end. One at a time.
class DataFolder {
public:
    /// Throws std::filesystem::filesystem_error.
    DataFolder();
    ~DataFolder();
    DataFolder(const DataFolder&) = delete;
    DataFolder& operator=(const DataFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace bench
