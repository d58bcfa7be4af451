#pragma once

#include <string_view>

namespace vx::com {

/// Whether a call with this result, an HRESULT, did what it was to. If not, an error line is logged: `message` and
/// behind it the result as a signed number.
bool succeeded(long result, std::string_view message) noexcept;

} // namespace vx::com
