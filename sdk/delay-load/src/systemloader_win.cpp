#include "systemloader.h"

#include "delay-load/bootstrap.h"
#include "logging/nodestructor.h"

#include <windows.h>

#include <algorithm>

namespace vx::delayload {

namespace {

std::optional<std::wstring> queryText(HKEY key, const std::wstring& value)
{
    DWORD type = 0;
    DWORD bytes = 0;
    if (RegQueryValueExW(key, value.c_str(), nullptr, &type, nullptr, &bytes) != ERROR_SUCCESS)
        return std::nullopt;
    if (type != REG_SZ && type != REG_EXPAND_SZ && type != REG_MULTI_SZ)
        return std::nullopt;
    // What is stored need not end with a zero nor have an even size; the buffer's last character stays zero.
    std::wstring text((bytes + 1) / sizeof(wchar_t) + 1, L'\0');
    if (RegQueryValueExW(key, value.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &bytes) !=
        ERROR_SUCCESS)
        return std::nullopt;
    text.resize(text.find(L'\0'));
    return text;
}

} // namespace

Module SystemLoader::load(const std::wstring& path)
{
    // The system takes the folder for the library's own imports from what stands before the last backslash.
    std::wstring native = path;
    std::replace(native.begin(), native.end(), L'/', L'\\');
    return LoadLibraryExW(native.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

Module SystemLoader::loadByName(const std::wstring& name)
{
    return LoadLibraryExW(name.c_str(), nullptr, LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
}

void* SystemLoader::findFunction(Module module, const char* name)
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

std::wstring SystemLoader::executablePath()
{
    std::wstring path(260, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

std::wstring SystemLoader::systemDirectory()
{
    wchar_t path[261];
    const UINT length = GetSystemDirectoryW(path, 261);
    return length < 261 ? std::wstring(path, length) : std::wstring();
}

std::optional<std::wstring> SystemLoader::readRegistryText(const std::wstring& key, const std::wstring& value)
{
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS)
        return std::nullopt;
    const std::shared_ptr<HKEY__> closer(opened, RegCloseKey);
    return queryText(opened, value);
}

LoadStatus delayLoadInitialize(std::uint32_t component, const Initializer& initializer, LoadResult& result)
{
    return delayLoadInitialize(LoadContext{{}, true, component}, initializer, result);
}

LoadStatus delayLoadInitialize(const LoadContext& context, const Initializer& initializer, LoadResult& result)
{
    // Other threads may still bootstrap while the process ends.
    static NoDestructor<Bootstrap> bootstrap(std::make_shared<SystemLoader>());
    return bootstrap->initialize(context, initializer, result);
}

} // namespace vx::delayload
