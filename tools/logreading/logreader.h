#pragma once

#include "logreading/linesplitter.h"

#include <filesystem>
#include <memory>
#include <string_view>

namespace logreading {

/// Where the plug-in's log is when an administrator runs it. The file need not exist.
std::filesystem::path logLocation();

/// Reads a rotated UTF-16 log that other programs write: NAME.log is the current file, NAME.1.log the one
/// before it, and so on. Each call continues where the last one ended, through any number of rotations, so
/// that no line is lost or told twice as long as its file still exists; one that has shrunk to less than what was read
/// is told from its beginning. Files are opened with full sharing and none is held between the calls, so it is not in
/// the writers' way. Memory does not grow with the log. One thread.
class LogReader {
public:
    /// `file` is the current file; it need not exist yet.
    explicit LogReader(std::filesystem::path file);
    ~LogReader();
    LogReader(const LogReader&) = delete;
    LogReader& operator=(const LogReader&) = delete;

    /// Goes to the beginning of the oldest file that is there.
    void rewind();
    /// Gives the lines that were completed since the last call, in UTF-8 and without line ends. Before the first
    /// rewind it starts with the current file. Throws Win32Exception when a file cannot be read.
    void read(const LineSplitter::Sink& sink);
    /// Gives the line at the end of what was read, if that has no end.
    void finish(const LineSplitter::Sink& sink) { m_splitter.finish(sink); }

private:
    class File;
    struct Position;

    std::unique_ptr<File> openOldest() const;
    std::unique_ptr<File> reopen(const LineSplitter::Sink& sink);
    bool advance(const LineSplitter::Sink& sink);
    std::unique_ptr<File> openSuccessor(unsigned index) const;
    void drain(const LineSplitter::Sink& sink);

    std::filesystem::path m_current;
    std::unique_ptr<File> m_file;         ///< the file that is being read, within a call
    std::unique_ptr<Position> m_position; ///< where the last call ended
    LineSplitter m_splitter;
};

} // namespace logreading
