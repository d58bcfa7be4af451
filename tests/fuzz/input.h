#pragma once

#include "vxtl/parsejson.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

// What the targets share: the input as text and as JSON, and the check that ends a run.

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

/// The input as JSON; nothing when it is none or goes deeper than JSON of others may.
inline std::optional<nlohmann::json> json(const std::uint8_t* data, std::size_t size)
{
    try {
        auto value = vx::parseJson(bytes(data, size));
        require(value == nlohmann::json::parse(bytes(data, size), nullptr, false), "JSON as the library reads it");
        return value;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

} // namespace fuzz
