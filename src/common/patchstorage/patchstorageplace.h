#pragma once

namespace vx::tarn::common {

/// Where a deployment that waits for a reboot is kept in the registry: two JSON texts and a 32-bit number.
inline constexpr wchar_t patchStorageKey[] = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn\\PatchStorage";
inline constexpr wchar_t storedPatches[] = L"patches";
inline constexpr wchar_t storedStatuses[] = L"statuses";
inline constexpr wchar_t storedFinished[] = L"finished";

} // namespace vx::tarn::common
