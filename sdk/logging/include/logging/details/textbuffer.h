#pragma once

#include <streambuf>
#include <string>

namespace vx::logging::details {

/// What a stream is written through into a text, which is borrowed. The library's string streams do the same,
/// but a program that has no other use for them grows by nearly 100 KB.
template <typename Char>
class TextBuffer final : public std::basic_streambuf<Char> {
public:
    explicit TextBuffer(std::basic_string<Char>& text) : m_text(text) {}

private:
    using Traits = std::char_traits<Char>;

    typename Traits::int_type overflow(typename Traits::int_type c) override
    {
        if (!Traits::eq_int_type(c, Traits::eof()))
            m_text.push_back(Traits::to_char_type(c));
        return Traits::not_eof(c);
    }
    std::streamsize xsputn(const Char* text, std::streamsize size) override
    {
        m_text.append(text, static_cast<std::size_t>(size));
        return size;
    }

    std::basic_string<Char>& m_text;
};

} // namespace vx::logging::details
