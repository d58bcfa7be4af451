#include "delay-load/librarysearch.h"

namespace vx::delayload {

namespace {

// A bare name would be looked for along the process's search path, where anyone may have put a library.
bool isFullPath(const std::wstring& path)
{
    return path.starts_with(L"\\\\") || (path.size() > 3 && path[1] == L':' && path[2] == L'\\');
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
        return L"Software\\Lindhaven\\Vantorix\\Delay Loading";
    return L"Software\\Vantorix\\QRL\\Delay Loading\\" + std::to_wstring(component);
}

Module tryLoad(ILoader& loader, const LoadContext& context, const std::wstring& path)
{
    if (!isFullPath(path))
        return nullptr;
    const Module module = loader.load(path);
    if (!module)
        return nullptr;
    if (void* const found = loader.findFunction(module, "VXDelayLoadDependencies")) {
        const DependencyContext dependencies{
            context.directory.c_str(), context.searchExecutableDirectory, context.component};
        reinterpret_cast<DependenciesFunction>(found)(&dependencies);
    }
    return module;
}

} // namespace

Module findLibrary(ILoader& loader, const LoadContext& context, const std::wstring& name)
{
    if (!context.directory.empty())
        if (const Module module = tryLoad(loader, context, join(context.directory, name)))
            return module;
    if (context.searchExecutableDirectory)
        if (const Module module = tryLoad(loader, context, beside(loader.executablePath(), name)))
            return module;
    if (context.directory.empty())
        if (const auto path = loader.readRegistryText(registryKey(context.component), name))
            if (const Module module = tryLoad(loader, context, *path))
                return module;
    return tryLoad(loader, context, join(loader.systemDirectory(), name));
}

} // namespace vx::delayload
