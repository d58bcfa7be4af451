#include "host/systemtext.h"

#include "vxtl/str.h"

#include <windows.h>

namespace devhost::host {

std::string systemText(unsigned long code)
{
    wchar_t buffer[512];
    const auto length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
        buffer, static_cast<DWORD>(std::size(buffer)), nullptr);
    const auto number = "error " + std::to_string(code);
    const auto text = vx::str::toUtf8(vx::str::trim(std::wstring_view(buffer, length)));
    return text.empty() ? number : text + " (" + number + ")";
}

std::string toText(const std::filesystem::path& path)
{
    return vx::str::toUtf8(path.native());
}

} // namespace devhost::host
