#include "common/utils/jsonnumber.h"

#include <limits>
#include <nlohmann/json.hpp>

namespace vx::tarn::common::utils {

namespace {

template <typename Integer>
Integer readInteger(const nlohmann::json& value)
{
    using Limits = std::numeric_limits<Integer>;
    if (!value.is_number_float())
        return value.get<Integer>();
    const double number = value.get<double>();
    // The first number beyond the type is a power of two, and so exact in floating point.
    constexpr double limit = -static_cast<double>(Limits::min());
    if (number >= limit)
        return Limits::max();
    if (number <= -limit)
        return Limits::min();
    return static_cast<Integer>(number);
}

} // namespace

std::int64_t readInt64(const nlohmann::json& value)
{
    return readInteger<std::int64_t>(value);
}

std::int32_t readInt32(const nlohmann::json& value)
{
    return readInteger<std::int32_t>(value);
}

} // namespace vx::tarn::common::utils
