#include "vxtl/exception.h"

#include "logging/details/lasterror.h"
#include "logging/details/textbuffer.h"
#include "logging/details/utf8.h"
#include "vxtl/str.h"

#include <ostream>
#include <utility>

namespace vx {

namespace {

std::shared_ptr<const std::wstring> share(const wchar_t* text)
{
    return std::make_shared<const std::wstring>(text ? text : L"");
}

std::string utf8Report(const std::exception& exception)
{
    const logging::details::LastErrorKeeper keeper;
    std::string text;
    if (const auto* own = dynamic_cast<const BaseException*>(&exception))
        logging::details::appendUtf8(text, own->wideWhat());
    else
        logging::details::appendForeign(text, exception.what());
    return text;
}

} // namespace

BaseException::BaseException(const wchar_t* reason, const wchar_t* function, const wchar_t* file, unsigned line)
    : m_reason(share(reason)), m_function(share(function)), m_file(share(file)), m_line(line)
{}

BaseException::BaseException(const std::wstring& reason, const wchar_t* function, const wchar_t* file, unsigned line)
    : BaseException(reason.c_str(), function, file, line)
{}

// The report caches stay behind: a copy may go to another thread, and they are not locked.
BaseException::BaseException(const BaseException& other) noexcept
    : std::exception(other), m_reason(other.m_reason), m_function(other.m_function), m_file(other.m_file),
      m_line(other.m_line)
{}

BaseException& BaseException::operator=(const BaseException& other) noexcept
{
    m_reason = other.m_reason;
    m_function = other.m_function;
    m_file = other.m_file;
    m_line = other.m_line;
    m_wideReport.reset();
    m_narrowReport.reset();
    return *this;
}

BaseException::~BaseException() = default;

const char* BaseException::what() const noexcept
{
    try {
        if (!m_narrowReport)
            m_narrowReport = std::make_shared<const std::string>(str::toMultibyte(wideWhat()));
        return m_narrowReport->c_str();
    } catch (...) {
        return "";
    }
}

const wchar_t* BaseException::wideWhat() const
{
    if (!m_wideReport) {
        std::wstring text;
        logging::details::TextBuffer<wchar_t> buffer(text);
        std::wostream stream(&buffer);
        report(stream);
        m_wideReport = std::make_shared<const std::wstring>(std::move(text));
    }
    return m_wideReport->c_str();
}

void BaseException::report(std::wostream& stream) const
{
    stream << L"Type: vx::BaseException, Reason: " << reason();
    reportPlace(stream);
}

void BaseException::reportPlace(std::wostream& stream) const
{
    stream << L", Function: " << *m_function << L", File: " << *m_file << L", Line: " << m_line;
}

std::ostream& operator<<(std::ostream& stream, const What& what)
{
    return stream << utf8Report(what.m_exception);
}

std::wstring details::widenSource(std::string_view text)
{
    return {text.begin(), text.end()};
}

namespace logging {

LogStream& operator<<(LogStream& stream, const std::exception& exception) noexcept
{
    if (!stream.isEnabled())
        return stream;
    stream << "Exception occurred. ";
    try {
        stream << utf8Report(exception);
    } catch (...) {
        stream << "Serious Error: Exception occurred during another exception tracing.";
    }
    return stream;
}

} // namespace logging

} // namespace vx
