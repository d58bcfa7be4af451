#pragma once

#include <windows.h>

#include <oaidl.h>

namespace vx::com {

class Bstr;

// Arguments of calls, which borrow them: there is nothing to clear.

VARIANT emptyVariant() noexcept;
VARIANT variantOf(long number) noexcept;
/// Not to outlive the text.
VARIANT variantOf(const Bstr& text) noexcept;

} // namespace vx::com
