#include "host/pluginloader.h"

#include "host/exitcode.h"
#include "host/systemtext.h"

#include <utility>
#include <windows.h>

namespace devhost::host {

namespace {

constexpr auto exportName = "_QRLPluginInitialize@12";

HMODULE load(const std::filesystem::path& library)
{
    // The libraries beside the plug-in are found, the current folder is not searched.
    if (const auto module = LoadLibraryExW(library.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH))
        return module;
    throw CommandError(ExitCode::Failed, "cannot load " + toText(library) + ": " + systemText(GetLastError()));
}

} // namespace

PluginLoader::PluginLoader(const std::filesystem::path& library)
    : m_module(load(std::filesystem::absolute(library))),
      m_initialize(reinterpret_cast<PluginApi::Initialize>(
          reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m_module), exportName))))
{
    if (m_initialize)
        return;
    FreeLibrary(static_cast<HMODULE>(m_module));
    throw CommandError(ExitCode::Failed, toText(library) + " is no plug-in: it has no export " + exportName);
}

PluginLoader::~PluginLoader()
{
    unload();
}

void PluginLoader::unload() noexcept
{
    if (const auto module = std::exchange(m_module, nullptr))
        FreeLibrary(static_cast<HMODULE>(module));
}

std::uint32_t PluginLoader::initialize(const char* name, HosterApi* hoster, PluginApi* plugin) const
{
    return m_initialize(name, hoster, plugin);
}

bool PluginLoader::isLoaded(const std::filesystem::path& library)
{
    return GetModuleHandleW(std::filesystem::absolute(library).c_str()) != nullptr;
}

} // namespace devhost::host
