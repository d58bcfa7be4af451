#include "vxtl/comexception.h"

#include <ostream>

namespace vx {

ComException::ComException(
    const ComError& error, const wchar_t* reason, const wchar_t* function, const wchar_t* file, unsigned line)
    : BaseException(reason, function, file, line), m_error(error)
{}

ComException::ComException(
    const ComError& error, const std::wstring& reason, const wchar_t* function, const wchar_t* file, unsigned line)
    : BaseException(reason, function, file, line), m_error(error)
{}

// The message stays behind like the reports: it is not locked.
ComException::ComException(const ComException& other) noexcept : BaseException(other), m_error(other.m_error) {}

ComException& ComException::operator=(const ComException& other) noexcept
{
    BaseException::operator=(other);
    m_error = other.m_error;
    m_message.reset();
    return *this;
}

void ComException::report(std::wostream& stream) const
{
    stream << L"Type: vx::ComException, Reason: " << reason();
    reportPlace(stream);
    stream << L", COM Error: " << message() << L", HRESULT: " << m_error.result() << L", COM Source: "
           << m_error.source();
}

const std::wstring& ComException::message() const
{
    if (!m_message)
        m_message = std::make_shared<const std::wstring>(m_error.message());
    return *m_message;
}

} // namespace vx
