#include "vxtl/str.h"

namespace vx::str {

std::wstring trim(std::wstring_view text, std::wstring_view characters)
{
    const auto first = text.find_first_not_of(characters);
    if (first == std::wstring_view::npos)
        return {};
    return std::wstring(text.substr(first, text.find_last_not_of(characters) - first + 1));
}

std::vector<std::wstring> split(std::wstring_view text, wchar_t separator)
{
    std::vector<std::wstring> pieces;
    for (;;) {
        const auto end = text.find(separator);
        pieces.push_back(trim(text.substr(0, end)));
        if (end == std::wstring_view::npos)
            return pieces;
        text.remove_prefix(end + 1);
    }
}

} // namespace vx::str
