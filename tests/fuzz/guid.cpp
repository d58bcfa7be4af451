// A text is refused with the one error or gives a GUID whose own text has the one form and reads back as the same
// GUID: as it is, and in lower case with something behind it.

#include "input.h"

#include <regex>

using namespace vx::tarn::common;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::wregex form(L"[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");
    const auto text = fuzz::text(data, size);
    const auto guid = text ? fuzz::guid(*text) : std::nullopt;
    if (!guid)
        return 0;
    std::wstring written = utils::guidToString(*guid);
    fuzz::require(std::regex_match(written, form), "the text's form");
    fuzz::require(fuzz::guid(written) == guid, "round trip");
    for (wchar_t& digit : written)
        digit = digit >= L'A' ? digit - L'A' + L'a' : digit;
    fuzz::require(fuzz::guid(written + *text) == guid, "in lower case, with a tail");
    return 0;
}
