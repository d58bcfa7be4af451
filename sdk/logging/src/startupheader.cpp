#include "logging/startupheader.h"

#include "logging/backend.h"
#include "logging/details/utf8.h"

#include <cstddef>
#include <cstdio>
#include <exception>
#include <io.h>
#include <memory>
#include <system_error>
#include <vector>
#include <windows.h>

#include <winternl.h>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace vx::logging::startup_header {

namespace {

constexpr int headerLevel = 4;

// How a version resource begins: a node's head, its name "VS_VERSION_INFO", its value.
struct VersionResource {
    WORD head[3];
    wchar_t name[16];
    VS_FIXEDFILEINFO info;
};
static_assert(offsetof(VersionResource, info) == 40);

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

// A module's handle is its address.
HMODULE ownModule()
{
    return reinterpret_cast<HMODULE>(&__ImageBase);
}

// A snapshot of all processes tells it too, but takes milliseconds, and this runs under the loader's lock.
unsigned long parentProcessId()
{
    PROCESS_BASIC_INFORMATION process;
    const NTSTATUS status =
        NtQueryInformationProcess(GetCurrentProcess(), ProcessBasicInformation, &process, sizeof process, nullptr);
    return NT_SUCCESS(status) ? static_cast<unsigned long>(process.InheritedFromUniqueProcessId) : 0;
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

std::string failureLine(const char* function, const std::exception& failure)
{
    std::string line = std::string("An error occurred in vx::logging::startup_header::") + function + ": ";
    details::appendForeign(line, failure.what());
    return line;
}

} // namespace

std::string getStartProcessInfo()
{
    try {
        const unsigned long id = GetCurrentProcessId();
        return "Process file: " + utf8(fileOfModule(nullptr)) + ", Process Id: 0x" + print("%04X", id) +
               ", Parent Process Id: 0x" + print("%04X", parentProcessId());
    } catch (const std::exception& e) {
        return failureLine("getStartProcessInfo", e);
    }
}

std::string getModuleFileInfo(const std::string& versionText)
{
    try {
        return describeModule(versionText);
    } catch (const std::exception& e) {
        return failureLine("getModuleFileInfo", e);
    }
}

std::wstring moduleFile()
{
    return fileOfModule(ownModule());
}

// Not by the system's version functions: they would bring a library of their own into the process, and this runs
// while the module is being loaded, when no other may be.
std::string moduleVersionText(HINSTANCE__* module)
{
    constexpr int readable = 4;
    if (_waccess(fileOfModule(module).c_str(), readable) != 0)
        return {};
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), MAKEINTRESOURCEW(16));
    if (!found || SizeofResource(module, found) < sizeof(VersionResource))
        return {};
    const auto* resource = static_cast<const VersionResource*>(LockResource(LoadResource(module, found)));
    if (!resource || resource->info.dwSignature != VS_FFI_SIGNATURE)
        return {};
    const VS_FIXEDFILEINFO& info = resource->info;
    return print("%u.%u.%u.%u", HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS),
        HIWORD(info.dwFileVersionLS), LOWORD(info.dwFileVersionLS));
}

void write() noexcept
{
    try {
        const std::vector<std::string> lines = {
            getModuleFileInfo(moduleVersionText(ownModule())), getStartProcessInfo()};
        for (const std::string& line : lines)
            VxQrlLogging::log(headerLevel, "* %s", line.c_str());
    } catch (const std::exception& e) {
        VxQrlLogging::log(headerLevel, "!!! Failure to add additional headers: %s", e.what());
    }
}

} // namespace vx::logging::startup_header
