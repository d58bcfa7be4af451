#include "store/protocol/errorcode.h"

namespace devhost::store {

std::string_view errorText(ErrorCode code) noexcept
{
    switch (code) {
    case ErrorCode::Success: return "Operation completed successfully";
    case ErrorCode::Unknown: return "Operation failed with unknown error";
    case ErrorCode::InvalidParameter: return "Invalid parameter";
    case ErrorCode::Unreachable: return "Server is unreachable";
    case ErrorCode::AccessDenied: return "Access denied";
    case ErrorCode::NotFound: return "Setting not found";
    case ErrorCode::InvalidType: return "Invalid setting type";
    case ErrorCode::NotAllowed: return "Operation is not allowed";
    case ErrorCode::SizeLimit: return "Operation cannot be completed because of settings file size limitation";
    case ErrorCode::SchemaViolation: return "Try to write setting that does not adhere to schema";
    case ErrorCode::UacCancelled: return "UAC was cancelled by the user";
    }
    return "Unknown error code";
}

StoreException::StoreException(ErrorCode code, const std::string& subject, const std::string& text)
    : std::runtime_error(subject + ": " + (text.empty() ? std::string(errorText(code)) : text) + " (" +
                         std::to_string(static_cast<int>(code)) + ")"),
      m_code(code)
{}

} // namespace devhost::store
