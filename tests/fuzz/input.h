#pragma once

#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the targets share: the input as text, the check that ends a run, and a plain second reading of lists.

namespace fuzz {

inline std::string_view bytes(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// The input as wide text; nothing when it is not UTF-8.
inline std::optional<std::wstring> text(const std::uint8_t* data, std::size_t size)
{
    try {
        return vx::str::fromUtf8(bytes(data, size));
    } catch (const vx::Win32Exception&) {
        return std::nullopt;
    }
}

inline void require(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "violated: %s\n", what);
        std::abort();
    }
}

inline bool isBlank(wchar_t c)
{
    return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n';
}

/// The pieces between separators, without the blanks at their ends; empty ones are left out.
inline std::vector<std::wstring> pieces(const std::wstring& text, wchar_t separator)
{
    std::vector<std::wstring> all;
    std::wstring piece;
    std::wstring blanks;
    for (const wchar_t c : text + separator) {
        if (c == separator) {
            if (!piece.empty())
                all.push_back(piece);
            piece.clear();
            blanks.clear();
        } else if (isBlank(c)) {
            blanks += c;
        } else {
            piece += piece.empty() ? std::wstring() : blanks;
            piece += c;
            blanks.clear();
        }
    }
    return all;
}

} // namespace fuzz
