#pragma once

#include <string>

namespace vx::tarn::common {

/// The system's folder for data of all users. Empty after a failure, which is logged.
std::wstring getCommonAppDataFolder();

/// Makes the folder with all its parents unless it is there. A failure is logged.
void createDirectories(const std::wstring& path);

} // namespace vx::tarn::common
