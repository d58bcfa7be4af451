#pragma once

#include "host/pluginapi.h"

#include <filesystem>

namespace devhost::host {

/// A plug-in library in memory, loaded by its full path; unloaded at destruction. Throws CommandError when
/// the library or its one export is not there.
class PluginLoader {
public:
    explicit PluginLoader(const std::filesystem::path& library);
    ~PluginLoader();
    PluginLoader(const PluginLoader&) = delete;
    PluginLoader& operator=(const PluginLoader&) = delete;

    /// Calls the export; `name` has to live on only for the call.
    std::uint32_t initialize(const char* name, HosterApi* hoster, PluginApi* plugin) const;
    /// Ahead of the destruction.
    void unload() noexcept;
    /// Leaves the library in memory for good: some of its code may still run.
    void leak() noexcept { m_module = nullptr; }

    /// Whether the library of this path is in memory.
    static bool isLoaded(const std::filesystem::path& library);

private:
    void* m_module;
    PluginApi::Initialize m_initialize;
};

} // namespace devhost::host
