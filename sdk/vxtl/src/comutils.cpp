#include "vxtl/comutils.h"

#include "vxtl/comexception.h"

#include <windows.h>

#include <objbase.h>

namespace vx::comutils {

void details::initializeCom()
{
    const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (FAILED(result))
        VX_THROW_COM(result, L"CoInitializeEx failed");
}

ComApartment::~ComApartment()
{
    CoUninitialize();
}

} // namespace vx::comutils
