#pragma once

namespace vx::tarn::common {

/// What installers leave in the registry; all texts.

/// The folder that holds the agent.
inline constexpr wchar_t installationKey[] = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn";
inline constexpr wchar_t installationDirectory[] = L"InstallationDirectory";

/// The host's product: which one it is, and its program that asks users to reboot.
inline constexpr wchar_t suiteKey[] = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\Unitide";
inline constexpr wchar_t suiteConfiguration[] = L"Config";
inline constexpr wchar_t suiteVersion[] = L"Version";
inline constexpr wchar_t restartCommand[] = L"RestartCommand";

} // namespace vx::tarn::common
