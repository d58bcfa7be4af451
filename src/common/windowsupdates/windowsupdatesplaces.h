#pragma once

#include <array>

namespace vx::tarn::common {

/// Where a WindowsUpdatesState stands in the registry: 32-bit numbers, in the order of its members.
struct WindowsUpdatesPlace {
    const wchar_t* key;
    std::array<const wchar_t*, 4> names;
};

/// The group policy for automatic updates.
inline constexpr WindowsUpdatesPlace windowsUpdatesPolicy = {
    L"HKEY_LOCAL_MACHINE\\Software\\Policies\\Microsoft\\Windows\\WindowsUpdate\\AU",
    {L"NoAutoUpdate", L"AUOptions", L"ScheduledInstallDay", L"ScheduledInstallTime"}};

/// What a pause has found there and is to be put back.
inline constexpr WindowsUpdatesPlace savedWindowsUpdates = {L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\tarn",
    {L"WUState", L"WUOptions", L"WUScheduledInstallDay", L"WUScheduledInstallTime"}};

} // namespace vx::tarn::common
