#include "delay-load/librarysearch.h"

namespace vx::delayload {

namespace {

bool isSlash(wchar_t character)
{
    return character == L'\\' || character == L'/';
}

// A relative path would be taken from the current directory, where anyone may have put a library.
bool isFullPath(const std::wstring& path)
{
    if (path.size() < 4)
        return false;
    const bool isOnShare = isSlash(path[0]) && isSlash(path[1]);
    return isOnShare || (path[1] == L':' && isSlash(path[2]));
}

bool isFileName(const std::wstring& text)
{
    return !text.empty() && text.find_first_of(L"\\/:") == std::wstring::npos;
}

std::wstring join(const std::wstring& directory, const std::wstring& name)
{
    return directory.ends_with(L'\\') ? directory + name : directory + L'\\' + name;
}

std::wstring beside(const std::wstring& executable, const std::wstring& name)
{
    return executable.substr(0, executable.rfind(L'\\') + 1) + name;
}

std::wstring registryKey(std::uint32_t component)
{
    if (component == 0)
        return unnumberedLibrariesKey;
    return librariesKey + (L'\\' + std::to_wstring(component));
}

Module withDependencies(ILoader& loader, const LoadContext& context, Module module)
{
    if (!module)
        return nullptr;
    if (void* const found = loader.findFunction(module, "VXDelayLoadDependencies")) {
        const DependencyContext dependencies{
            context.directory.c_str(), context.searchExecutableDirectory, context.component};
        reinterpret_cast<DependenciesFunction>(found)(&dependencies);
    }
    return module;
}

Module tryPath(ILoader& loader, const LoadContext& context, const std::wstring& path)
{
    return isFullPath(path) ? withDependencies(loader, context, loader.load(path)) : nullptr;
}

Module tryRegistry(ILoader& loader, const LoadContext& context, const std::wstring& name)
{
    const std::wstring text = loader.readRegistryText(registryKey(context.component), name).value_or(std::wstring());
    if (isFileName(text))
        return withDependencies(loader, context, loader.loadByName(text));
    return tryPath(loader, context, text);
}

} // namespace

Module findLibrary(ILoader& loader, const LoadContext& context, const std::wstring& name)
{
    if (!context.directory.empty())
        if (const Module module = tryPath(loader, context, join(context.directory, name)))
            return module;
    if (context.searchExecutableDirectory)
        if (const Module module = tryPath(loader, context, beside(loader.executablePath(), name)))
            return module;
    if (context.directory.empty())
        if (const Module module = tryRegistry(loader, context, name))
            return module;
    return tryPath(loader, context, join(loader.systemDirectory(), name));
}

} // namespace vx::delayload
