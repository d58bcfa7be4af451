#include "common/syncfolders/directories.h"

#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <shlobj.h>

namespace vx::tarn::common {

namespace {

bool isDirectory(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

/// Gives the system's error, 0 for a folder that is there in the end.
DWORD makeWithParents(const std::wstring& path)
{
    if (CreateDirectoryW(path.c_str(), nullptr))
        return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    // Another process may make the same folders at the same time.
    if (error == ERROR_ALREADY_EXISTS && isDirectory(path))
        return ERROR_SUCCESS;
    const auto separator = path.find_last_of(L"\\/");
    if (error != ERROR_PATH_NOT_FOUND || separator == std::wstring::npos || separator == 0)
        return error;
    if (const DWORD parentError = makeWithParents(path.substr(0, separator)))
        return parentError;
    return CreateDirectoryW(path.c_str(), nullptr) || isDirectory(path) ? ERROR_SUCCESS : GetLastError();
}

} // namespace

std::wstring getCommonAppDataFolder()
{
    wchar_t path[MAX_PATH];
    const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, path);
    if (result == S_OK)
        return path;
    logging::LogStream(logging::Level::Error)
        << "Failed to get special folder path (CSIDL_COMMON_APPDATA). Result = " << result;
    return {};
}

void createDirectories(const std::wstring& path)
{
    if (isDirectory(path))
        return;
    if (const DWORD error = makeWithParents(path))
        logging::LogStream(logging::Level::Error)
            << "Failed to create directories: " << path
            << ". Error code: " << str::trim(Win32ErrorCategory::emptyReason(error));
}

} // namespace vx::tarn::common
