#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vx {

/// One enumerator, by its number, and its text, which is ASCII.
struct EnumText {
    std::int32_t number;
    const char* text;
};

/// The texts of one enumeration, matched exactly, case included. Constant data. An enumeration has texts when a
/// function `textsOf` beside it takes one of its values, no matter which, and gives this table.
struct EnumTexts {
    const char* type; ///< for messages
    std::span<const EnumText> rows;

    /// Null for a number or a text that no row has.
    constexpr const EnumText* find(std::int32_t number) const;
    const EnumText* find(std::string_view text) const;
    const EnumText* find(std::wstring_view text) const;

    /// The same, but throw std::invalid_argument.
    const EnumText& at(std::int32_t number) const;
    const EnumText& at(std::string_view text) const;
    const EnumText& at(std::wstring_view text) const;
};

/// Makes a table's rows: `constexpr auto rows = enumTexts<Color>({{Color::Red, "red"}, {Color::Green, "green"}});`
template <typename Enum>
struct EnumTextRow {
    Enum value;
    const char* text;
};
template <typename Enum, std::size_t count>
consteval std::array<EnumText, count> enumTexts(const EnumTextRow<Enum> (&rows)[count])
{
    std::array<EnumText, count> result{};
    for (std::size_t i = 0; i < count; ++i)
        result[i] = {static_cast<std::int32_t>(rows[i].value), rows[i].text};
    return result;
}

/// Throws std::invalid_argument "Invalid value for " and the type for a value without a text.
template <typename Enum>
    requires requires
    {
        textsOf(Enum());
    }
std::string toText(Enum value)
{
    return textsOf(value).at(static_cast<std::int32_t>(value)).text;
}

/// The way back, from std::string_view or std::wstring_view; throws the same.
template <typename Enum, typename Text>
Enum fromText(const Text& text)
{
    return static_cast<Enum>(textsOf(Enum()).at(text).number);
}

/// Nothing for a text that is none of the enumeration's.
template <typename Enum, typename Text>
std::optional<Enum> findText(const Text& text)
{
    const EnumText* row = textsOf(Enum()).find(text);
    return row ? std::optional(static_cast<Enum>(row->number)) : std::nullopt;
}

constexpr const EnumText* EnumTexts::find(std::int32_t number) const
{
    for (const EnumText& row : rows)
        if (row.number == number)
            return &row;
    return nullptr;
}

} // namespace vx
