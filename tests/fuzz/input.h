#pragma once

#include "common/utils/guid.h"
#include "vxtl/parsejson.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

// What the targets share: the input as text and as JSON, the check that ends a run, GUIDs, and what was read compared
// with what is written.

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

inline std::size_t levels(const nlohmann::json& value)
{
    std::size_t deepest = 0;
    for (const auto& element : value)
        deepest = std::max(deepest, element.is_structured() ? levels(element) : 0);
    return value.is_structured() ? deepest + 1 : 0;
}

/// The input as JSON; nothing when it is none or goes deeper than JSON of others may.
inline std::optional<nlohmann::json> json(const std::uint8_t* data, std::size_t size)
{
    const auto plain = nlohmann::json::parse(bytes(data, size), nullptr, false);
    try {
        auto value = vx::parseJson(bytes(data, size));
        require(value == plain && levels(value) <= vx::deepestJson, "JSON as the library reads it");
        return value;
    } catch (const nlohmann::json::exception&) {
        require(plain.is_discarded() || levels(plain) > vx::deepestJson, "good JSON is read");
        return std::nullopt;
    }
}

/// Nothing for what is refused, and that with the one error.
inline std::optional<vx::tarn::common::utils::Guid> guid(const std::wstring& text)
{
    try {
        return vx::tarn::common::utils::guidFromString(text);
    } catch (const std::runtime_error& e) {
        require(std::string_view(e.what()) == "Bad GUID format", "the error's text");
        return std::nullopt;
    }
}

/// Whether `written` says what was read of `in`: what was missing or null has its default, a number with a fraction was
/// cut, and anything else is the same.
inline bool isFrom(const nlohmann::json& in, const nlohmann::json& written)
{
    if (in.is_null() || (in.is_number_float() && written.is_number()))
        return true;
    if (!written.is_object() || !in.is_object())
        return in == written;
    const auto members = written.items();
    return std::all_of(members.begin(), members.end(),
        [&](const auto& member) { return isFrom(in.value(member.key(), nlohmann::json()), member.value()); });
}

} // namespace fuzz
