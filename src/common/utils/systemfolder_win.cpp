#include "common/utils/folders.h"

#include "logging/logstream.h"

#include <windows.h>

namespace vx::tarn::common::utils {

std::wstring getSystemFolder()
{
    wchar_t path[MAX_PATH];
    const UINT length = GetSystemDirectoryW(path, MAX_PATH);
    if (length > 0 && length < MAX_PATH)
        return std::wstring(path, length);
    const DWORD error = GetLastError();
    logging::LogStream(logging::Level::Error) << "Failed to get system folder. Last error code: " << error;
    return {};
}

} // namespace vx::tarn::common::utils
