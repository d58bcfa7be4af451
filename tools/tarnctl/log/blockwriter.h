#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace tarnctl::log {

/// Collects text and hands it to a stream in large pieces: the stream's own way costs more than a line of a log. One
/// thread.
class BlockWriter {
public:
    /// The stream is borrowed. What was put and not flushed at the end is lost.
    explicit BlockWriter(std::ostream& stream);

    void put(std::string_view text)
    {
        if (text.size() > m_block.size() - m_used)
            return putLarge(text);
        text.copy(m_block.data() + m_used, text.size());
        m_used += text.size();
    }
    void put(char character) { put(std::string_view(&character, 1)); }
    /// Also flushes the stream; that one tells of a failure.
    void flush();

private:
    void putLarge(std::string_view text);
    void hand();

    std::ostream& m_stream;
    std::string m_block; ///< its first bytes wait for the stream
    std::size_t m_used = 0;
};

} // namespace tarnctl::log
