// The functions by which the system finds the library's classes, and regsvr32 makes it known.

#include "libraries/systemobjects/classes.h"
#include "libraries/systemobjects/comobject.h"
#include "machine/system.h"

#include <exception>
#include <olectl.h>

using namespace devhost;

extern "C" {

HRESULT __stdcall DllGetClassObject(REFCLSID id, REFIID iid, void** object)
{
    return systemobjects::getClassObject(id, iid, object);
}

/// Whether every object was given back. The library stays all the same: an unload leaves handles of the compiler's
/// run-time behind.
HRESULT __stdcall DllCanUnloadNow()
{
    return systemobjects::livingObjects == 0 ? S_OK : S_FALSE;
}

/// The classes take the place of the system's own, which a real Windows needs.
HRESULT __stdcall DllRegisterServer()
{
    if (machine::thisSystem() != machine::System::Wine)
        return E_ACCESSDENIED;
    try {
        systemobjects::registerClasses();
        return S_OK;
    } catch (const std::exception&) {
        return SELFREG_E_CLASS;
    }
}
}
