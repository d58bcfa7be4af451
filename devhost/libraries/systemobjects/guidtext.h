#pragma once

#include <string>
#include <windows.h>

#include <objbase.h>

namespace devhost::systemobjects {

/// In braces.
inline std::wstring guidText(const GUID& guid)
{
    wchar_t text[39];
    StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
    return text;
}

} // namespace devhost::systemobjects
