#include "storefailure.h"

namespace vx::meridia {

void throwOnReadError(QrlMeridiaError_enum code, const std::wstring& name, const wchar_t* function)
{
    using Error = QrlMeridiaError_enum;
    switch (code) {
    case Error::Success: return;
    case Error::InvalidSettingType: VX_THROW_AS(settings::InvalidTypeException, function, name);
    case Error::InvalidParameter: VX_THROW_AS(settings::InvalidValueException, function, name);
    case Error::SettingNotFound: VX_THROW_AS(settings::NotFoundException, function, name);
    case Error::AccessDenied: VX_THROW_AS(settings::AccessDeniedException, function, name);
    case Error::ServerUnreachable: VX_THROW_AS(settings::ServerUnreachableException, function, name);
    default: VX_THROW_AS(QrlMeridiaException, function, code, errorText(code) + (L", Setting: " + name));
    }
}

} // namespace vx::meridia
