#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace devhost::store {

/// What a call to the store ends with. The numbers are those that the client library hands to its
/// callers; a fault plan may use any other number as well.
enum class ErrorCode : int {
    Success = 0,
    Unknown = 1,
    InvalidParameter = 2, ///< empty name, text that is not UTF-8 or JSON, closed handle
    Unreachable = 3,
    AccessDenied = 5,
    NotFound = 10,
    InvalidType = 11, ///< the value exists with another type
    NotAllowed = 12,
    SizeLimit = 13,
    SchemaViolation = 14,
    UacCancelled = 20,
};

/// One short sentence without a full stop; "Unknown error code" for a number without a text.
std::string_view errorText(ErrorCode code) noexcept;

/// A call to the store that failed. what() is one line: the subject, the code's text and its number.
class StoreException : public std::runtime_error {
public:
    /// `subject` names the value or the operation; `text` stands in for the code's text when given.
    StoreException(ErrorCode code, const std::string& subject, const std::string& text = {});

    ErrorCode code() const noexcept { return m_code; }

private:
    ErrorCode m_code;
};

} // namespace devhost::store
