#pragma once

#include "vxtl/comerror.h"
#include "vxtl/exception.h"

namespace vx {

/// A failed COM call, with the place that threw.
class ComException : public BaseException {
public:
    ComException(
        const ComError& error, const wchar_t* reason, const wchar_t* function, const wchar_t* file, unsigned line);
    ComException(
        const ComError& error, const std::wstring& reason, const wchar_t* function, const wchar_t* file, unsigned line);
    ComException(const ComException& other) noexcept;
    ComException& operator=(const ComException& other) noexcept;

    long result() const noexcept { return m_error.result(); }
    void report(std::wostream& stream) const override;

private:
    /// Made once per object.
    const std::wstring& message() const;

    ComError m_error;
    mutable std::shared_ptr<const std::wstring> m_message;
};

} // namespace vx

/// Throws a ComException: VX_THROW_COM(error) or VX_THROW_COM(error, L"reason"); the error is a result or a
/// ComError.
#define VX_THROW_COM(error, ...) VX_THROW(::vx::ComException, ::vx::ComError(error), std::wstring(__VA_ARGS__))
