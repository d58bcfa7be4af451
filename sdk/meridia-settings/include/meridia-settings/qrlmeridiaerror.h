#pragma once

#include "vxtl/errorcodeexception.h"

namespace vx {

namespace meridia {

/// Error codes of the host's store. Other numbers occur too.
enum class QrlMeridiaError_enum : int {
    Success = 0,
    Failed = 1,
    InvalidParameter = 2,
    ServerUnreachable = 3,
    AccessDenied = 5,
    SettingNotFound = 10,
    InvalidSettingType = 11,
    NotAllowed = 12,
    FileSizeLimitation = 13,
    SchemaViolation = 14,
    UacCancelled = 20
};

/// "Unknown error code" for numbers without a text.
const wchar_t* errorText(QrlMeridiaError_enum code) noexcept;

} // namespace meridia

/// Names the store's exceptions in reports.
struct QrlMeridiaErrorCategory {
    static constexpr const wchar_t* label = L"QrlMeridiaException";
    static const wchar_t* emptyReason(meridia::QrlMeridiaError_enum code) noexcept { return meridia::errorText(code); }
};

/// A failure of the store that is not about one setting's presence, type, value or access.
using QrlMeridiaException = ErrorCodeException<QrlMeridiaErrorCategory, meridia::QrlMeridiaError_enum>;

} // namespace vx
