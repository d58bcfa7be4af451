#include "vxtl-com/succeeded.h"

#include "logging/logstream.h"

#include <windows.h>

namespace vx::com {

bool succeeded(long result, std::string_view message) noexcept
{
    if (SUCCEEDED(result))
        return true;
    logging::LogStream(logging::Level::Error) << message << result;
    return false;
}

} // namespace vx::com
