#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vx::tarn::common {

/// A result code with its text; the codes are also the agent's process exit codes. Immutable; equal when
/// the codes are.
class ExitStatus {
public:
    constexpr ExitStatus(std::int32_t code, std::wstring_view message) noexcept : m_code(code), m_message(message) {}

    constexpr std::int32_t code() const noexcept { return m_code; }
    std::wstring message() const { return std::wstring(m_message); }

    friend constexpr bool operator==(const ExitStatus& a, const ExitStatus& b) noexcept { return a.m_code == b.m_code; }

private:
    std::int32_t m_code;
    std::wstring_view m_message; ///< a literal
};

} // namespace vx::tarn::common
