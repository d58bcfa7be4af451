#include "machine/system.h"

#include <windows.h>

namespace devhost::machine {

System thisSystem()
{
    const auto ntdll = GetModuleHandleW(L"ntdll.dll");
    return ntdll && GetProcAddress(ntdll, "wine_get_version") ? System::Wine : System::Windows;
}

} // namespace devhost::machine
