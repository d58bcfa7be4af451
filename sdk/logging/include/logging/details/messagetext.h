#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace vx::logging::details {

/// A narrow text that grows: the first 512 bytes stand in the object, so a usual log line needs no heap.
/// A stack object of one thread.
class MessageText {
public:
    // Not defaulted: the buffer must stay uninitialised.
    MessageText() noexcept {}
    MessageText(const MessageText&) = delete;
    MessageText& operator=(const MessageText&) = delete;

    /// Throws std::bad_alloc and leaves the text as it was.
    void append(std::string_view text);
    void append(std::size_t count, char c);

    std::string_view view() const noexcept { return {data(), m_size}; }

private:
    const char* data() const noexcept { return m_heap ? m_heap.get() : m_inline; }
    char* grow(std::size_t count);

    std::size_t m_size = 0;
    std::size_t m_capacity = sizeof m_inline;
    std::unique_ptr<char[]> m_heap;
    char m_inline[512];
};

} // namespace vx::logging::details
