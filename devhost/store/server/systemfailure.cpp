#include "store/server/systemfailure.h"

#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <windows.h>

namespace devhost::store {

void throwSystemFailure(unsigned long error, const std::wstring& subject)
{
    const std::wstring reason = vx::str::trim(vx::Win32ErrorCategory::emptyReason(error));
    const std::string text = vx::str::toUtf8(reason) + " [system error " + std::to_string(error) + "]";
    const ErrorCode code = error == ERROR_ACCESS_DENIED ? ErrorCode::AccessDenied : ErrorCode::Unknown;
    throw StoreException(code, vx::str::toUtf8(subject), text);
}

} // namespace devhost::store
