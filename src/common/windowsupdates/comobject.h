#pragma once

#include "vxtl-com/comptr.h"
#include "vxtl/comerror.h"

#include <windows.h>

#include <objbase.h>

namespace vx::tarn::common {

namespace details {
HRESULT createComObject(REFCLSID classId, REFIID interfaceId, void** object);
}

/// Makes an object of a server of any kind, has it run, and asks it for the interface. A failure leaves `object` empty;
/// so does a server that gives none and calls it a success.
template <typename Interface>
HRESULT createComObject(REFCLSID classId, REFIID interfaceId, com::ComPtr<Interface>& object)
{
    return details::createComObject(classId, interfaceId, reinterpret_cast<void**>(object.put()));
}

/// What failed in a call of the object through this interface, with the error object that it has left. To be called
/// right after the call.
ComError comErrorOf(HRESULT result, IUnknown& object, REFIID interfaceId);

} // namespace vx::tarn::common
