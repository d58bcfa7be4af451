#include "store/server/storefile.h"

#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <filesystem>

#include <windows.h>

namespace devhost::store {

namespace {

vx::SharedHandle lockBeside(const std::wstring& path)
{
    const std::wstring name = path + L".lock";
    auto lock = std::make_shared<vx::KernelHandle>(CreateFileW(name.c_str(), GENERIC_WRITE | DELETE, 0, nullptr,
        CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    const DWORD error = GetLastError();
    if (lock->isValid())
        return lock;
    if (error == ERROR_SHARING_VIOLATION)
        throw StoreException(ErrorCode::NotAllowed, vx::str::toUtf8(path), "another server is using this store's file");
    throwSystemFailure(error, name);
}

} // namespace

void throwSystemFailure(unsigned long error, const std::wstring& subject)
{
    const std::wstring reason = vx::str::trim(vx::Win32ErrorCategory::emptyReason(error));
    const std::string text = vx::str::toUtf8(reason) + " [system error " + std::to_string(error) + "]";
    const ErrorCode code = error == ERROR_ACCESS_DENIED ? ErrorCode::AccessDenied : ErrorCode::Unknown;
    throw StoreException(code, vx::str::toUtf8(subject), text);
}

StoreFile::StoreFile(std::wstring path) : m_path(std::move(path))
{
    const std::filesystem::path folder = std::filesystem::path(m_path).parent_path();
    std::error_code ignored; // the lock file shows whether the folder can be used
    if (!folder.empty())
        std::filesystem::create_directories(folder, ignored);
    m_lock = lockBeside(m_path);
}

std::optional<std::string> StoreFile::read() const
{
    const vx::KernelHandle file(CreateFileW(
        m_path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.isValid()) {
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND)
            return std::nullopt;
        throwSystemFailure(error, m_path);
    }
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file.get(), &size))
        throwSystemFailure(GetLastError(), m_path);
    std::string content(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD bytes = 0;
    if (!ReadFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &bytes, nullptr))
        throwSystemFailure(GetLastError(), m_path);
    content.resize(bytes);
    return content;
}

void StoreFile::replace(const std::string& content) const
{
    const std::wstring temporary = m_path + L".new";
    writeTemporary(temporary, content);
    if (MoveFileExW(temporary.c_str(), m_path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return;
    const DWORD error = GetLastError();
    DeleteFileW(temporary.c_str());
    throwSystemFailure(error, m_path);
}

void StoreFile::writeTemporary(const std::wstring& path, const std::string& content) const
{
    const vx::KernelHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.isValid())
        throwSystemFailure(GetLastError(), path);
    DWORD bytes = 0;
    // Without the flush the new name could reach the disk before the content.
    if (!WriteFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &bytes, nullptr) ||
        !FlushFileBuffers(file.get()))
        throwSystemFailure(GetLastError(), path);
}

} // namespace devhost::store
