#pragma once

#include <string>

struct IErrorInfo;

namespace vx {

/// A failed COM call: its result and the error object that came with it. Copies share the object.
class ComError {
public:
    /// `info` may be null; a reference is taken.
    ComError(long result, IErrorInfo* info = nullptr) noexcept;
    ComError(const ComError& other) noexcept : ComError(other.m_result, other.m_info) {}
    ComError& operator=(const ComError& other) noexcept;
    ~ComError();

    long result() const noexcept { return m_result; }
    /// The system's text without its line end, or one made of the number.
    std::wstring message() const;
    /// What the error object names as its source; empty without one.
    std::wstring source() const;

private:
    long m_result;
    IErrorInfo* m_info; ///< counted
};

namespace details {
/// The message where the system has none.
std::wstring unknownComErrorMessage(long result);
} // namespace details

} // namespace vx
