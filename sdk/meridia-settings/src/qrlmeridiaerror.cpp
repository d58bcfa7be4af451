#include "meridia-settings/qrlmeridiaerror.h"

namespace vx::meridia {

const wchar_t* errorText(QrlMeridiaError_enum code) noexcept
{
    switch (code) {
    case QrlMeridiaError_enum::Success: return L"Operation completed successfully";
    case QrlMeridiaError_enum::Failed: return L"Operation failed with unknown error";
    case QrlMeridiaError_enum::InvalidParameter: return L"Invalid parameter";
    case QrlMeridiaError_enum::ServerUnreachable: return L"Server is unreachable";
    case QrlMeridiaError_enum::AccessDenied: return L"Access denied";
    case QrlMeridiaError_enum::SettingNotFound: return L"Setting not found";
    case QrlMeridiaError_enum::InvalidSettingType: return L"Invalid setting type";
    case QrlMeridiaError_enum::NotAllowed: return L"Operation is not allowed";
    case QrlMeridiaError_enum::FileSizeLimitation:
        return L"Operation cannot be completed because of settings file size limitation";
    case QrlMeridiaError_enum::SchemaViolation: return L"Try to write setting that does not adhere to schema";
    case QrlMeridiaError_enum::UacCancelled: return L"UAC was cancelled by the user";
    }
    return L"Unknown error code";
}

} // namespace vx::meridia
