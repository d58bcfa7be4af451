#pragma once

#include <string>

/// Where log files stand, for the logger and for who reads them. Neither need exist.
namespace VxQrlLogging {

/// Whose folder they go to: an administrator's to the machine's.
enum class Location { Machine, User, LowIntegrity };

/// The folder below the root that the registry or the environment names.
std::wstring makerFolder(Location location);
/// In that, the folder of the log that was opened with this first name; the second is the file's.
std::wstring logFolder(const std::wstring& makerFolder, const std::wstring& name1);

} // namespace VxQrlLogging
