#pragma once

#include "logreading/linesplitter.h"
#include "vxtl/win32exception.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace logreading {

/// Where the plug-in's log is when an administrator runs it. The file need not exist.
std::filesystem::path logLocation();

/// Reads a rotated UTF-16 log that other programs write: NAME.log is the current file, NAME.1.log the one
/// before it, and so on. Each call continues where the last one ended, through any number of rotations, so
/// that no line is lost or told twice as long as its file still exists; a file that was cut is read anew. Files are
/// opened with full sharing and none is held between the calls, so it is not in the writers' way. Memory does not grow
/// with the log. One thread.
class LogReader {
public:
    /// Is told why a file can't be opened, each time that happens.
    using PassedOver = std::function<void(const vx::Win32Exception&)>;

    /// `file` is the current file; it need not exist yet. With `passedOver`, a file that can't be opened does not end a
    /// call: the readable ones are told without it. The file in which reading stands is never given up for that, a
    /// later call goes on in it.
    explicit LogReader(std::filesystem::path file, PassedOver passedOver = nullptr);
    ~LogReader();
    LogReader(const LogReader&) = delete;
    LogReader& operator=(const LogReader&) = delete;

    /// Goes to the beginning of the oldest file that is there; false when there is none. Throws as read.
    bool rewind();
    /// Gives the lines that were completed since the last call, in UTF-8 and without line ends. Before the first
    /// rewind it starts with the current file. Throws Win32Exception when a file cannot be read; the next call goes on
    /// there.
    void read(const LineSplitter::Sink& sink);
    /// Gives the line at the end of what was read, if that has no end.
    void finish(const LineSplitter::Sink& sink) { m_splitter.finish(sink); }

private:
    class File;
    struct Identity;
    struct Position;

    std::unique_ptr<File> open(unsigned index);
    std::unique_ptr<File> openOldest();
    void notePosition(const File& file);
    bool wasCut(unsigned index);
    std::unique_ptr<File> reopen(const LineSplitter::Sink& sink);
    bool advance(const LineSplitter::Sink& sink);
    std::unique_ptr<File> openSuccessor(unsigned index);
    void drain(const LineSplitter::Sink& sink);

    std::filesystem::path m_current;
    PassedOver m_passedOver;
    std::size_t m_passedOverCount = 0;
    std::unique_ptr<File> m_file;         ///< the file that is being read, within a call
    std::unique_ptr<Position> m_position; ///< where the last call ended
    LineSplitter m_splitter;
    std::vector<char> m_buffer;
};

} // namespace logreading
