#include "common/localtime.h"

#include <time.h>

namespace vx::tarn::common::utils {

std::optional<std::tm> toLocalTime(std::int64_t time) noexcept
{
    std::tm parts{};
    // The plain call's time ends in 2038.
    const __time64_t wide = time;
    if (_localtime64_s(&parts, &wide) != 0)
        return std::nullopt;
    return parts;
}

} // namespace vx::tarn::common::utils
