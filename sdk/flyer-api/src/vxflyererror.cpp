#include "flyer-api/vxflyererror.h"

namespace vx::flyers {

const wchar_t* errorText(VxFlyerError_enum code) noexcept
{
    switch (code) {
    case VxFlyerError_enum::Success: return L"Success";
    case VxFlyerError_enum::Failed: return L"Generic failure";
    case VxFlyerError_enum::InvalidParameter: return L"Invalid paremeter";
    case VxFlyerError_enum::AccessDenied: return L"Access denied";
    case VxFlyerError_enum::TooManyItems: return L"Reached maximun number of items";
    case VxFlyerError_enum::ServiceUnavailable: return L"Service unavailable";
    }
    return L"Unknown error code";
}

} // namespace vx::flyers
