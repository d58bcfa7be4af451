#include "storefailure.h"

namespace vx::meridia {

void throwOnReadError(QrlMeridiaError_enum code, const std::wstring& name, const logging::FunctionName& function)
{
    using Error = QrlMeridiaError_enum;
    switch (code) {
    case Error::Success: return;
    case Error::InvalidSettingType: VX_THROW_FROM(settings::InvalidTypeException, function, name);
    case Error::InvalidParameter: VX_THROW_FROM(settings::InvalidValueException, function, name);
    case Error::SettingNotFound: VX_THROW_FROM(settings::NotFoundException, function, name);
    case Error::AccessDenied: VX_THROW_FROM(settings::AccessDeniedException, function, name);
    case Error::ServerUnreachable: VX_THROW_FROM(settings::ServerUnreachableException, function, name);
    default: VX_THROW_FROM(QrlMeridiaException, function, code, errorText(code) + (L", Setting: " + name));
    }
}

} // namespace vx::meridia
