#include "vxtl/win32exception.h"

namespace vx {

std::wstring Win32ErrorCategory::emptyReason(unsigned long) noexcept
{
    return {};
}

} // namespace vx
