#pragma once

#include "vxtl/exception.h"

#include <ostream>

namespace vx {

/// A failure that has a code. `Category` gives `label`, the type's name in the report, and
/// `emptyReason(code)`, the reason to use when the thrower gave none; that call never throws.
template <typename Category, typename Code>
class ErrorCodeException : public BaseException {
public:
    ErrorCodeException(Code code, const wchar_t* reason, const wchar_t* function, const wchar_t* file, unsigned line)
        : ErrorCodeException(code, std::wstring(reason ? reason : L""), function, file, line)
    {}
    ErrorCodeException(
        Code code, const std::wstring& reason, const wchar_t* function, const wchar_t* file, unsigned line)
        : BaseException(reason.empty() ? Category::emptyReason(code) : reason, function, file, line), m_code(code)
    {}

    Code code() const noexcept { return m_code; }

    void report(std::wostream& stream) const override
    {
        stream << L"Type: " << Category::label << L", Reason: " << reason();
        reportPlace(stream);
        stream << L", Error Code : " << static_cast<long long>(m_code);
    }

private:
    Code m_code;
};

} // namespace vx
