#include "tarnhd/scheduler/removetree.h"

#include "vxtl/scopeexit.h"

#include <string_view>
#include <windows.h>

namespace vx::scheduler {

namespace {

DWORD removeEntry(const std::wstring& path, DWORD attributes);

DWORD removeContents(const std::wstring& path)
{
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return GetLastError();
    const ScopeExit end([search] { FindClose(search); });
    do {
        const std::wstring_view name = entry.cFileName;
        if (name == L"." || name == L"..")
            continue;
        if (const DWORD error = removeEntry(path + L'\\' + entry.cFileName, entry.dwFileAttributes))
            return error;
    } while (FindNextFileW(search, &entry));
    const DWORD error = GetLastError();
    return error == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : error;
}

DWORD removeEntry(const std::wstring& path, DWORD attributes)
{
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY))
        return DeleteFileW(path.c_str()) ? ERROR_SUCCESS : GetLastError();
    // What a link leads to belongs to somebody else.
    if (!(attributes & FILE_ATTRIBUTE_REPARSE_POINT))
        if (const DWORD error = removeContents(path))
            return error;
    return RemoveDirectoryW(path.c_str()) ? ERROR_SUCCESS : GetLastError();
}

} // namespace

std::optional<unsigned long> removeTree(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return std::nullopt;
    return removeEntry(path, attributes);
}

} // namespace vx::scheduler
