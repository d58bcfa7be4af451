#include "filesystem.h"

#include <windows.h>

namespace VxQrlLogging::FileSystem {

File::~File()
{
    File::close();
}

bool File::open(const std::wstring& path, SecurityAttributes* attributes)
{
    if (isOpen())
        return true;
    m_handle = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        attributes, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (!isOpen())
        return false;
    if (!writeByteOrderMark()) {
        close();
        return false;
    }
    return true;
}

void File::close()
{
    if (m_handle == INVALID_HANDLE_VALUE)
        return;
    CloseHandle(m_handle);
    m_handle = INVALID_HANDLE_VALUE;
}

bool File::write(const void* buffer, std::size_t bytes)
{
    DWORD written = 0;
    return WriteFile(m_handle, buffer, static_cast<DWORD>(bytes), &written, nullptr) && written == bytes;
}

std::uint64_t File::size()
{
    LARGE_INTEGER end;
    // A file that can't tell its size counts as full, so the next record tries a fresh one.
    if (!SetFilePointerEx(m_handle, LARGE_INTEGER{}, &end, FILE_END))
        return UINT64_MAX;
    return static_cast<std::uint64_t>(end.QuadPart);
}

bool File::flush()
{
    return FlushFileBuffers(m_handle);
}

bool File::isOpen() const
{
    return m_handle != INVALID_HANDLE_VALUE;
}

bool File::writeByteOrderMark()
{
    static constexpr unsigned char mark[] = {0xFF, 0xFE};
    return size() != 0 || write(mark, sizeof mark);
}

std::unique_ptr<File> Path::createFile()
{
    return std::make_unique<File>();
}

bool Path::exists(const std::wstring& path)
{
    // A search would find the same and takes ten times as long; a rotation asks this for every file.
    const DWORD found = GetFileAttributesW(path.c_str());
    return found != INVALID_FILE_ATTRIBUTES && (found & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool Path::createDirectories(const std::wstring& path, SecurityAttributes* attributes)
{
    const DWORD found = GetFileAttributesW(path.c_str());
    if (found != INVALID_FILE_ATTRIBUTES)
        return (found & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const std::size_t cut = path.rfind(L'\\');
    if (cut == std::wstring::npos || !createDirectories(path.substr(0, cut), attributes))
        return false;
    // Another process may make the same directory at the same time.
    return CreateDirectoryW(path.c_str(), attributes) || GetLastError() == ERROR_ALREADY_EXISTS;
}

bool Path::move(const std::wstring& from, const std::wstring& to)
{
    return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING);
}

bool Path::remove(const std::wstring& path)
{
    if (DeleteFileW(path.c_str()))
        return true;
    const DWORD error = GetLastError();
    if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND)
        MoveFileExW(path.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
    return false;
}

} // namespace VxQrlLogging::FileSystem
