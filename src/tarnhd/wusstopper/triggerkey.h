#pragma once

namespace vx::tarn {

/// Below this key of the machine's hive changes are waited for.
inline constexpr wchar_t watchedKey[] = L"Software\\Vantorix";
/// The registry key whose presence asks for the stop of the service. Others make it, below the watched key.
inline constexpr wchar_t triggerKey[] = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\TARNShutdownWUSVolatile";
/// Its value, a 64-bit number: when the time to the reboot began, in seconds since the Unix epoch.
inline constexpr wchar_t triggerTimeValue[] = L"created_time";

} // namespace vx::tarn
