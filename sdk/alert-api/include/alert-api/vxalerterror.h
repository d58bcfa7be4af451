#pragma once

#include "vxtl/errorcodeexception.h"

namespace vx {

namespace alerts {

/// Error codes of the alert library, which alone knows the others and their texts.
enum class VxAlertError_enum : int { Success = 0 };

} // namespace alerts

/// Names the alert library's exceptions in reports.
struct VxAlertErrorCategory {
    static constexpr const wchar_t* label = L"VxAlertException";
    /// Empty: whoever throws has asked the library for the text.
    static const wchar_t* emptyReason(alerts::VxAlertError_enum) noexcept { return L""; }
};

/// A call of the alert library that failed.
using VxAlertException = ErrorCodeException<VxAlertErrorCategory, alerts::VxAlertError_enum>;

} // namespace vx
