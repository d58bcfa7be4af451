#pragma once

#include <string>

namespace vx::meridia {

/// Doubles as the store holds them. Throws std::invalid_argument "invalid stod argument" on a text that begins with
/// no number and std::out_of_range "stod argument out of range"; what follows the number is ignored.
double parseDouble(const std::wstring& text);
/// Six decimals, no exponent.
std::wstring formatDouble(double value);

} // namespace vx::meridia
