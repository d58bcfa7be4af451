#include "vxtl/enumtext.h"

#include <algorithm>
#include <stdexcept>

namespace vx {

namespace {

template <typename Text>
const EnumText* findIn(std::span<const EnumText> rows, Text text)
{
    for (const EnumText& row : rows)
        if (std::ranges::equal(text, std::string_view(row.text)))
            return &row;
    return nullptr;
}

const EnumText& valid(const EnumText* found, const char* type)
{
    if (!found)
        throw std::invalid_argument(std::string("Invalid value for ") + type);
    return *found;
}

} // namespace

const EnumText* EnumTexts::find(std::string_view text) const
{
    return findIn(rows, text);
}

const EnumText* EnumTexts::find(std::wstring_view text) const
{
    return findIn(rows, text);
}

const EnumText& EnumTexts::at(std::int32_t number) const
{
    return valid(find(number), type);
}

const EnumText& EnumTexts::at(std::string_view text) const
{
    return valid(find(text), type);
}

const EnumText& EnumTexts::at(std::wstring_view text) const
{
    return valid(find(text), type);
}

} // namespace vx
