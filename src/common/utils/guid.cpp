#include "common/utils/guid.h"

#include <cstdio>
#include <cwchar>
#include <stdexcept>

namespace vx::tarn::common::utils {

Guid guidFromString(const std::wstring& text)
{
    constexpr int fields = 11;
    Guid g;
    auto& d = g.data4;
    unsigned data1 = 0;
    const int matched = std::swscanf(text.c_str(), L"%8X-%4hX-%4hX-%2hhX%2hhX-%2hhX%2hhX%2hhX%2hhX%2hhX%2hhX", &data1,
        &g.data2, &g.data3, &d[0], &d[1], &d[2], &d[3], &d[4], &d[5], &d[6], &d[7]);
    if (matched != fields)
        throw std::runtime_error("Bad GUID format");
    g.data1 = data1;
    return g;
}

std::wstring guidToString(const Guid& guid)
{
    const auto& d = guid.data4;
    char text[37];
    const int length =
        std::snprintf(text, sizeof(text), "%08X-%04hX-%04hX-%02hhX%02hhX-%02hhX%02hhX%02hhX%02hhX%02hhX%02hhX",
            static_cast<unsigned>(guid.data1), guid.data2, guid.data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]);
    return std::wstring(text, text + length);
}

} // namespace vx::tarn::common::utils
