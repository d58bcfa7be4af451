#include "common/localtime.h"

#include <time.h>

namespace vx::tarn::common::utils {

std::optional<std::tm> toLocalTime(std::int64_t time) noexcept
{
    std::tm parts{};
    const std::time_t native = time;
    if (time < 0 || !localtime_r(&native, &parts))
        return std::nullopt;
    return parts;
}

} // namespace vx::tarn::common::utils
