#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <windows.h>

#include <oleauto.h>

namespace devhost::systemobjects {

/// Carries out a call of "INTERFACE::METHOD", unless a failure is planned for it: then that is its result. What is
/// thrown becomes E_OUTOFMEMORY or E_FAIL.
HRESULT answer(std::string_view call, const std::function<HRESULT()>& body) noexcept;

/// The same for a call that gives something, which is empty unless the body has set it: a number, null or VT_EMPTY.
template <typename Result>
HRESULT answer(std::string_view call, Result* result, const std::function<HRESULT()>& body) noexcept
{
    if (!result)
        return E_POINTER;
    *result = Result();
    return answer(call, body);
}

/// The same for one that gives a new object.
template <typename Object, typename Interface, typename... Arguments>
HRESULT give(std::string_view call, Interface** result, const Arguments&... arguments) noexcept
{
    return answer(call, result, [&] {
        *result = new Object(arguments...);
        return S_OK;
    });
}

/// For the caller to free. Throws std::bad_alloc, and Win32Exception for a text that is no UTF-8.
BSTR toBstr(const std::string& text);
/// A null text is an empty one. Throws Win32Exception for one that is no UTF-16.
std::string toText(BSTR text);

} // namespace devhost::systemobjects
