#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <memory>

namespace VxQrlLogging {

// The underscored functions, not the standard ones: those would give "%s" the compiler's meaning instead
// of the system's. Both return -1 when the text doesn't fit, and need no room for a terminator.
inline int formatText(wchar_t* target, std::size_t room, const wchar_t* format, std::va_list arguments)
{
    return _vsnwprintf(target, room, format, arguments);
}

/// The front-end's only format goes past the system's printf, which is a good part of a short record's cost.
inline int formatText(char* target, std::size_t room, const char* format, std::va_list arguments)
{
    if (std::strcmp(format, "%s%s") == 0) {
        std::va_list copy;
        va_copy(copy, arguments);
        const char* first = va_arg(copy, const char*);
        const char* second = va_arg(copy, const char*);
        va_end(copy);
        if (first && second) {
            const std::size_t firstSize = std::strlen(first);
            const std::size_t secondSize = std::strlen(second);
            if (firstSize + secondSize > room)
                return -1;
            std::memcpy(target, first, firstSize);
            std::memcpy(target + firstSize, second, secondSize);
            return static_cast<int>(firstSize + secondSize);
        }
    }
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
        std::va_list again;
        va_copy(again, arguments);
        bool done = formatTo(m_small, smallBufferSize, format, arguments);
        if (!done) {
            m_large.reset(new Char[largeBufferSize + 1]);
            done = formatTo(m_large.get(), largeBufferSize, format, again);
        }
        va_end(again);
        return done;
    }

    Char* data() noexcept { return m_large ? m_large.get() : m_small; }
    /// With the spare characters and the line end.
    std::size_t size() const noexcept { return m_size; }

private:
    bool formatTo(Char* buffer, std::size_t capacity, const Char* format, std::va_list arguments)
    {
        const int length = formatText(buffer + Spare, capacity - Spare - 2, format, arguments);
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
