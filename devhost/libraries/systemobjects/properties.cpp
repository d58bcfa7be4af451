#include "libraries/systemobjects/properties.h"

namespace devhost::systemobjects {

HRESULT Properties::getText(const char* name, BSTR* text) const
{
    return answer(call("::get_", name), text, [&] {
        if (m_values->contains(name))
            *text = toBstr(m_values->at(name));
        return S_OK;
    });
}

HRESULT Properties::putText(const char* name, BSTR text) const
{
    return answer(call("::put_", name), [&] {
        (*m_values)[name] = toText(text);
        return S_OK;
    });
}

HRESULT Properties::getFlag(const char* name, VARIANT_BOOL* flag) const
{
    return answer(call("::get_", name), flag, [&] {
        *flag = m_values->value(name, false) ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    });
}

HRESULT Properties::putFlag(const char* name, VARIANT_BOOL flag) const
{
    return answer(call("::put_", name), [&] {
        (*m_values)[name] = flag != VARIANT_FALSE;
        return S_OK;
    });
}

HRESULT Properties::putNumber(const char* name, long number, Range range) const
{
    return answer(call("::put_", name), [&] {
        if (number < range.lowest || number > range.highest)
            return E_INVALIDARG;
        (*m_values)[name] = number;
        return S_OK;
    });
}

} // namespace devhost::systemobjects
