#include "vxtl-com/comptr.h"

#include "vxtl/comexception.h"

#include <windows.h>

namespace vx::com {

void details::throwNull()
{
    VX_THROW_COM(E_POINTER, L"No COM object");
}

} // namespace vx::com
