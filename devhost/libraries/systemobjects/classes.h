#pragma once

#include <windows.h>

#include <unknwn.h>

namespace devhost::systemobjects {

/// The factory of a class, as DllGetClassObject gives it.
HRESULT getClassObject(REFCLSID id, REFIID iid, void** object);

/// Writes where the system finds the classes: in this module. Throws Win32Exception.
void registerClasses();

} // namespace devhost::systemobjects
