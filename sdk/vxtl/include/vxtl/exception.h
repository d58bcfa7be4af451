#pragma once

#include "logging/functionname.h"
#include "logging/logstream.h"

#include <exception>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace vx {

/// Root of the exception tree: a reason and the place that threw. Renders itself as one line. An
/// object belongs to one thread at a time; copies share the texts and may go to other threads.
class BaseException : public std::exception {
public:
    /// Null texts stand for empty ones.
    BaseException(const wchar_t* reason, const wchar_t* function, const wchar_t* file, unsigned line);
    BaseException(const std::wstring& reason, const wchar_t* function, const wchar_t* file, unsigned line);
    BaseException(const BaseException& other) noexcept;
    BaseException& operator=(const BaseException& other) noexcept;
    ~BaseException() override;

    /// The report in the system's narrow code page. Built once per object; empty if that fails.
    const char* what() const noexcept override;
    /// The report. Built once per object; throws what building it throws.
    virtual const wchar_t* wideWhat() const;
    /// Writes the one-line report.
    virtual void report(std::wostream& stream) const;

    const std::wstring& reason() const noexcept { return *m_reason; }

protected:
    /// Writes ", Function: ", ", File: " and ", Line: " with their values.
    void reportPlace(std::wostream& stream) const;

private:
    std::shared_ptr<const std::wstring> m_reason;
    std::shared_ptr<const std::wstring> m_function;
    std::shared_ptr<const std::wstring> m_file;
    unsigned m_line;
    mutable std::shared_ptr<const std::wstring> m_wideReport;
    mutable std::shared_ptr<const std::string> m_narrowReport;
};

/// An exception's report as a value of a log line, in the log's UTF-8 and not in the code page of what():
/// LogStream(Level::Error) << "Failed. " << What(e). Borrows the exception. A report that can't be made is left out.
class What {
public:
    explicit What(const std::exception& exception) noexcept : m_exception(exception) {}

    friend std::ostream& operator<<(std::ostream& stream, const What& what);

private:
    const std::exception& m_exception;
};

namespace details {
std::wstring widenSource(std::string_view text);
} // namespace details

namespace logging {
/// Writes "Exception occurred. " and the exception's report. Never throws.
LogStream& operator<<(LogStream& stream, const std::exception& exception) noexcept;
inline LogStream& operator<<(LogStream&& stream, const std::exception& exception) noexcept
{
    return stream << exception;
}
} // namespace logging

} // namespace vx

/// Throws with the given function name, for code whose name in reports differs from its own.
#define VX_THROW_AS(exceptionType, functionName, ...)                                                                  \
    throw exceptionType(__VA_ARGS__, functionName, ::vx::details::widenSource(__FILE__).c_str(), __LINE__)

/// The same with the name that VX_LOG_SCOPE keeps, or another logging::FunctionName.
#define VX_THROW_FROM(exceptionType, function, ...)                                                                    \
    VX_THROW_AS(exceptionType, ::vx::details::widenSource((function).view()).c_str(), __VA_ARGS__)

/// Throws an exception of the tree with the enclosing function's name, the file and the line behind
/// the given arguments: VX_THROW(vx::BaseException, L"reason").
#define VX_THROW(exceptionType, ...)                                                                                   \
    VX_THROW_FROM(exceptionType, ::vx::logging::FunctionName(__PRETTY_FUNCTION__), __VA_ARGS__)
