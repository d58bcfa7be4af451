#pragma once

#include "vxtl/errorcodeexception.h"

namespace vx {

namespace flyers {

/// Error codes of the flyer library. Other numbers may occur.
enum class VxFlyerError_enum : int {
    Success = 0,
    Failed = 1,
    InvalidParameter = 2,
    AccessDenied = 3,
    TooManyItems = 4,
    ServiceUnavailable = 5
};

/// "Unknown error code" for numbers without a text.
const wchar_t* errorText(VxFlyerError_enum code) noexcept;

} // namespace flyers

/// Names the flyer library's exceptions in reports.
struct VxFlyerErrorCategory {
    static constexpr const wchar_t* label = L"VxFlyerException";
    static const wchar_t* emptyReason(flyers::VxFlyerError_enum code) noexcept { return flyers::errorText(code); }
};

/// A call of the flyer library that failed.
using VxFlyerException = ErrorCodeException<VxFlyerErrorCategory, flyers::VxFlyerError_enum>;

} // namespace vx
