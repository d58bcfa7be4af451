#include "logging/startupheader.h"

#include "logging/backend.h"
#include "logging/details/utf8.h"

#include <cstdio>
#include <exception>
#include <io.h>
#include <memory>
#include <system_error>
#include <vector>
#include <windows.h>

#include <tlhelp32.h>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace vx::logging::startup_header {

namespace {

constexpr int headerLevel = 4;

[[noreturn]] void fail(DWORD error, const char* function)
{
    throw std::system_error(static_cast<int>(error), std::system_category(), function);
}

template <typename... Values>
std::string print(const char* format, Values... values)
{
    char text[64];
    // The system's function: the compiler's own one is not bound by what "%lld" means there.
    const int length = _snprintf(text, sizeof text, format, values...);
    return {text, static_cast<std::size_t>(length > 0 ? length : 0)};
}

std::string utf8(const std::wstring& text)
{
    std::string result;
    details::appendUtf8(result, text);
    return result;
}

std::wstring fileOfModule(HMODULE module)
{
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
    return {path, length};
}

unsigned long parentProcessId(unsigned long processId)
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE)
        return 0;
    unsigned long parent = 0;
    PROCESSENTRY32W entry;
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) {
        if (entry.th32ProcessID == processId) {
            parent = entry.th32ParentProcessID;
            break;
        }
    }
    CloseHandle(snapshot);
    return parent;
}

std::string localTime(const FILETIME& time)
{
    SYSTEMTIME utc;
    SYSTEMTIME local;
    if (!FileTimeToSystemTime(&time, &utc))
        fail(GetLastError(), "FileTimeToSystemTime");
    if (!SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local))
        fail(GetLastError(), "SystemTimeToTzSpecificLocalTime");
    return print("%4d-%02d-%02d %02d:%02d:%02d", local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute,
        local.wSecond);
}

std::string describeModule(const std::string& versionText)
{
    const std::wstring file = moduleFile();
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data))
        fail(GetLastError(), "GetFileAttributesExW");
    const auto size =
        static_cast<long long>((static_cast<unsigned long long>(data.nFileSizeHigh) << 32) | data.nFileSizeLow);
    return "Module  file: " + utf8(file) + ", Version: " + (versionText.empty() ? "<no version>" : versionText) +
           ", File size: " + print("%lld", size) + ", Created: " + localTime(data.ftCreationTime) +
           ", Modified: " + localTime(data.ftLastWriteTime);
}

} // namespace

std::string getStartProcessInfo()
{
    try {
        const unsigned long id = GetCurrentProcessId();
        return "Process file: " + utf8(fileOfModule(nullptr)) + ", Process Id: 0x" + print("%04X", id) +
               ", Parent Process Id: 0x" + print("%04X", parentProcessId(id));
    } catch (const std::exception& e) {
        return std::string("An error occurred in vx::logging::startup_header::getStartProcessInfo: ") + e.what();
    }
}

std::string getModuleFileInfo(const std::string& versionText)
{
    try {
        return describeModule(versionText);
    } catch (const std::exception& e) {
        return std::string("An error occurred in vx::logging::startup_header::getModuleFileInfo: ") + e.what();
    }
}

std::wstring moduleFile()
{
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            reinterpret_cast<const wchar_t*>(&__ImageBase), &module))
        return {};
    return fileOfModule(module);
}

std::string fileVersionText(const std::wstring& file)
{
    constexpr int readable = 4;
    if (_waccess(file.c_str(), readable) != 0)
        return {};
    DWORD unused = 0;
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), &unused);
    if (size == 0)
        return {};
    std::vector<char> block(size);
    void* found = nullptr;
    UINT length = 0;
    if (!GetFileVersionInfoW(file.c_str(), 0, size, block.data()) ||
        !VerQueryValueW(block.data(), L"\\", &found, &length) || length < sizeof(VS_FIXEDFILEINFO))
        return {};
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    return print("%u.%u.%u.%u", HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS),
        HIWORD(info.dwFileVersionLS), LOWORD(info.dwFileVersionLS));
}

void write() noexcept
{
    try {
        const std::vector<std::string> lines = {
            getModuleFileInfo(fileVersionText(moduleFile())), getStartProcessInfo()};
        for (const std::string& line : lines)
            VxQrlLogging::log(headerLevel, "* %s", line.c_str());
    } catch (const std::exception& e) {
        VxQrlLogging::log(headerLevel, "!!! Failure to add additional headers: %s", e.what());
    }
}

} // namespace vx::logging::startup_header
