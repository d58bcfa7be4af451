#include "vxtl-com/bstr.h"

#include "vxtl/comexception.h"

#include <windows.h>

#include <oleauto.h>

#include <utility>

namespace vx::com {

Bstr::Bstr(std::wstring_view text) : m_text(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())))
{
    if (!m_text)
        VX_THROW_COM(E_OUTOFMEMORY);
}

Bstr::~Bstr()
{
    free();
}

void Bstr::free() noexcept
{
    if (wchar_t* const text = std::exchange(m_text, nullptr))
        SysFreeString(text);
}

wchar_t** Bstr::put()
{
    // The first call of the library may throw, which the destructor's call must not be.
    SysStringLen(nullptr);
    free();
    return &m_text;
}

std::wstring Bstr::text() const
{
    return m_text ? std::wstring(m_text, SysStringLen(m_text)) : std::wstring();
}

} // namespace vx::com
