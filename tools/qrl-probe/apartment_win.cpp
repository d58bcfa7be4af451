#include "qrl-probe/apartment.h"

#include <objidl.h>
#include <windows.h>

namespace tools::qrlprobe {

Apartment currentApartment() noexcept
{
    // Where nobody has loaded COM, nobody has entered an apartment, and the probe brings nothing into the host.
    const HMODULE com = GetModuleHandleW(L"ole32.dll");
    if (!com)
        return Apartment::None;
    using Function = HRESULT(WINAPI*)(APTTYPE*, APTTYPEQUALIFIER*);
    const auto getType = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(com, "CoGetApartmentType")));
    APTTYPE type{};
    APTTYPEQUALIFIER qualifier{};
    if (!getType || getType(&type, &qualifier) != S_OK)
        return Apartment::None;
    return type == APTTYPE_STA || type == APTTYPE_MAINSTA ? Apartment::SingleThreaded : Apartment::MultiThreaded;
}

} // namespace tools::qrlprobe
