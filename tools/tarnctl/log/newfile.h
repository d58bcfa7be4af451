#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace tarnctl::log {

/// A file that is written beside its place and gets there complete, or not at all: then what stood there stays. One
/// thread.
class NewFile {
public:
    /// Throws CommandError when there can't be one.
    explicit NewFile(const std::string& name);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    std::ostream& stream() { return m_stream; }
    /// Puts it to its place. Throws CommandError when something of it could not be written.
    void keep();

private:
    const std::string m_name;
    const std::filesystem::path m_place, m_beside;
    std::ofstream m_stream;
};

} // namespace tarnctl::log
