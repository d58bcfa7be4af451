#include "vxtl/modulelife.h"

#include <windows.h>

namespace vx::modulelife {

void keep() noexcept
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
        reinterpret_cast<const wchar_t*>(&keep), &module);
    noteReferenceLeft();
}

} // namespace vx::modulelife
