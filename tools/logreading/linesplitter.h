#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace logreading {

/// Cuts the bytes of a log into lines of UTF-8, without their ends. A log is UTF-16, and what else got into it comes
/// through as well as it can: a line without a zero byte is one of UTF-8 that somebody appended, a record that was cut,
/// be it in the middle of a character, ends where the next one begins, and U+FFFD stands for what is no text, and once
/// for any number of zeros. One thread.
class LineSplitter {
public:
    /// Borrowed for the call.
    using Sink = std::function<void(std::string_view line)>;

    /// Gives each line that `bytes` completes.
    void take(std::string_view bytes, const Sink& sink);
    /// Gives the last line if that has no end: the file is over.
    void finish(const Sink& sink);

private:
    void completeRest(std::string_view& bytes, const Sink& sink);
    std::size_t takePlainLine(std::string_view bytes, const Sink& sink);
    std::size_t takeLine(std::string_view bytes, std::size_t from, const Sink& sink);
    void give(std::string_view bytes, const Sink& sink);
    void giveLine(const Sink& sink);

    std::string m_rest;        ///< bytes of a line that is not complete
    std::string m_line;        ///< kept for its memory, as the next
    std::vector<char> m_plain; ///< room for any line of the bytes at hand
};

} // namespace logreading
