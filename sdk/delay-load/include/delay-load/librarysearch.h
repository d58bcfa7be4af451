#pragma once

#include "delay-load/callingconvention.h"
#include "delay-load/loader.h"

#include <cstdint>
#include <string>

namespace vx::delayload {

/// Where the machine's hive says which file is the library that a value is named after; the component's number follows.
inline constexpr wchar_t librariesKey[] = L"Software\\Vantorix\\QRL\\Delay Loading";
/// The same for component 0.
inline constexpr wchar_t unnumberedLibrariesKey[] = L"Software\\Lindhaven\\Vantorix\\Delay Loading";

/// How libraries are looked for.
struct LoadContext {
    std::wstring directory; ///< searched first; empty for none
    bool searchExecutableDirectory = true;
    std::uint32_t component = 0; ///< names the registry key
};

/// The context as a library's own VXDelayLoadDependencies gets it. Lives for the call.
struct DependencyContext {
    const wchar_t* directory;
    std::uint32_t searchExecutableDirectory;
    std::uint32_t component;
};
using DependenciesFunction = void(VX_CDECL*)(const DependencyContext* context);

/// Loads the library from the first place that has it: the context's directory, the executable's directory, what the
/// registry says (only without a context directory), the system directory. Only full paths are tried, and of the
/// registry a bare file name too, which is not looked for along the process's search path either.
/// A library that exports VXDelayLoadDependencies is then asked to load its own. Null when no place has it.
Module findLibrary(ILoader& loader, const LoadContext& context, const std::wstring& name);

} // namespace vx::delayload
