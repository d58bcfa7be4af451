#include "libraries/systemobjects/answer.h"

#include "machine/plannedfailure.h"
#include "vxtl/str.h"

#include <new>

namespace devhost::systemobjects {

HRESULT answer(std::string_view call, const std::function<HRESULT()>& body) noexcept
{
    try {
        if (const auto planned = machine::takePlannedFailure(call))
            return *planned;
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

BSTR toBstr(const std::string& text)
{
    const auto wide = vx::str::fromUtf8(text);
    const auto bstr = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (!bstr)
        throw std::bad_alloc();
    return bstr;
}

std::string toText(BSTR text)
{
    return vx::str::toUtf8(std::wstring_view(text ? text : L"", SysStringLen(text)));
}

} // namespace devhost::systemobjects
