#include "vxtl-com/variant.h"

#include "vxtl-com/bstr.h"

namespace vx::com {

VARIANT emptyVariant() noexcept
{
    VARIANT variant = {};
    V_VT(&variant) = VT_EMPTY;
    return variant;
}

VARIANT variantOf(long number) noexcept
{
    VARIANT variant = {};
    V_VT(&variant) = VT_I4;
    V_I4(&variant) = number;
    return variant;
}

VARIANT variantOf(const Bstr& text) noexcept
{
    VARIANT variant = {};
    V_VT(&variant) = VT_BSTR;
    V_BSTR(&variant) = text.get();
    return variant;
}

} // namespace vx::com
