#include "vxtl/comerror.h"

#include <cstdint>
#include <cstdio>

namespace vx::details {

std::wstring unknownComErrorMessage(long result)
{
    // The results that OLE Automation makes of a called object's own error numbers.
    constexpr std::uint32_t firstDispatch = 0x80040200;
    constexpr std::uint32_t endDispatch = 0x80050000;
    const auto code = static_cast<std::uint32_t>(result);
    char text[32];
    int length = 0;
    if (code >= firstDispatch && code < endDispatch && (code & 0xFFFF) != 0x200)
        length = std::snprintf(text, sizeof(text), "IDispatch error #%d", static_cast<int>((code - 0x200) & 0xFFFF));
    else
        length = std::snprintf(text, sizeof(text), "Unknown error 0x%0lX", static_cast<unsigned long>(code));
    return std::wstring(text, text + length);
}

} // namespace vx::details
