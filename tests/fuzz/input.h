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

} // namespace fuzz
