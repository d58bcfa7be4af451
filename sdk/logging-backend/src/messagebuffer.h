#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cwchar>
#include <memory>
#include <string_view>

namespace VxQrlLogging {

// The underscored functions, not the standard ones: those would give "%s" the compiler's meaning instead
// of the system's. Both return -1 when the text doesn't fit, and need no room for a terminator.
inline int formatText(wchar_t* target, std::size_t room, const wchar_t* format, std::va_list arguments)
{
    return _vsnwprintf(target, room, format, arguments);
}

inline int formatText(char* target, std::size_t room, const char* format, std::va_list arguments)
{
    return _vsnprintf(target, room, format, arguments);
}

/// Characters of the buffers, the record's line end included.
inline constexpr std::size_t smallBufferSize = 2048;
inline constexpr std::size_t largeBufferSize = 65536;

/// A message behind `Spare` free characters, with CR LF and a terminator at its end. The first buffer stands
/// in the object, the large one is made on need.
template <typename Char, std::size_t Spare>
class MessageBuffer {
public:
    // Not defaulted: the buffer must stay uninitialised.
    MessageBuffer() noexcept {}
    MessageBuffer(const MessageBuffer&) = delete;
    MessageBuffer& operator=(const MessageBuffer&) = delete;

    /// False when the text is too large for the large buffer too.
    bool format(const Char* format, std::va_list arguments)
    {
        return fill([&](Char* target, std::size_t room) {
            std::va_list copy;
            va_copy(copy, arguments);
            const int length = formatText(target, room, format, copy);
            va_end(copy);
            return length;
        });
    }

    /// The same for two texts, one behind the other.
    bool join(std::basic_string_view<Char> first, std::basic_string_view<Char> second)
    {
        return fill([&](Char* target, std::size_t room) {
            const std::size_t length = first.size() + second.size();
            if (length > room)
                return -1;
            second.copy(target + first.copy(target, first.size()), second.size());
            return static_cast<int>(length);
        });
    }

    Char* data() noexcept { return m_large ? m_large.get() : m_small; }
    /// With the spare characters and the line end.
    std::size_t size() const noexcept { return m_size; }

private:
    /// `write` fills a buffer with that much room and gives the length, or -1 when it doesn't fit.
    template <typename Write>
    bool fill(const Write& write)
    {
        if (fillIn(m_small, smallBufferSize, write))
            return true;
        m_large.reset(new Char[largeBufferSize + 1]);
        return fillIn(m_large.get(), largeBufferSize, write);
    }

    template <typename Write>
    bool fillIn(Char* buffer, std::size_t capacity, const Write& write)
    {
        const int length = write(buffer + Spare, capacity - Spare - 2);
        if (length < 0)
            return false;
        Char* end = buffer + Spare + length;
        *end++ = '\r';
        *end++ = '\n';
        *end = 0;
        m_size = static_cast<std::size_t>(end - buffer);
        return true;
    }

    std::size_t m_size = 0;
    std::unique_ptr<Char[]> m_large;
    Char m_small[smallBufferSize + 1];
};

} // namespace VxQrlLogging
