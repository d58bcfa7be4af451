#pragma once

#include "logging/functionname.h"
#include "meridia-settings/qrlmeridiaerror.h"
#include "settings-api/exceptions.h"

#include <string>

namespace vx::meridia {

/// Throws what the code means for the setting, as the named function; Success throws nothing.
void throwOnReadError(QrlMeridiaError_enum code, const std::wstring& name, const logging::FunctionName& function);

/// Writes through `store`, which calls the store once and answers its code. The test of each code is a call of its
/// own: a store that recovers in between makes the write succeed.
template <typename Store>
void writeRepeatedly(Store store, const std::wstring& name, const logging::FunctionName& function)
{
    using Error = QrlMeridiaError_enum;
    if (store() == Error::Success)
        return;
    if (store() == Error::InvalidSettingType)
        VX_THROW_FROM(settings::InvalidTypeException, function, name);
    if (store() == Error::InvalidParameter)
        VX_THROW_FROM(settings::InvalidValueException, function, name);
    if (store() == Error::SettingNotFound)
        VX_THROW_FROM(settings::NotFoundException, function, name);
    if (store() == Error::AccessDenied)
        VX_THROW_FROM(settings::AccessDeniedException, function, name);
    if (store() == Error::ServerUnreachable)
        VX_THROW_FROM(settings::ServerUnreachableException, function, name);
    const Error code = store();
    if (code == Error::Success)
        return;
    const std::wstring reason = errorText(store()) + (L", Setting: " + name);
    VX_THROW_FROM(QrlMeridiaException, function, code, reason);
}

} // namespace vx::meridia
