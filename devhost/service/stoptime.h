#pragma once

#include <chrono>
#include <optional>

// How the stand-in for the Windows Update service answers a stop. It is kept in the registry for all processes of the
// machine, and a stand-in that runs follows each change. The functions throw Win32Exception.
namespace devhost::service {

/// Below HKEY_LOCAL_MACHINE; what is kept of the stand-in is here.
inline constexpr wchar_t keptKeyPath[] = L"SOFTWARE\\Vantorix\\Development\\UpdateService";

/// How long a stop takes; nothing for a service that refuses to stop.
using StopTime = std::optional<std::chrono::seconds>;

/// No time at all where none is kept; makes the key that is to be watched.
StopTime readStopTime();
void writeStopTime(const StopTime& time);

} // namespace devhost::service
