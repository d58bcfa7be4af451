#pragma once

#include <string>

/// Where log files stand, for the logger and for who reads them. Neither need exist.
namespace VxQrlLogging {

/// Where the system says in the registry which folders hold the data of programs; texts.
inline constexpr const wchar_t* shellFolders = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
inline constexpr const wchar_t* machineFolderValue = L"Common AppData";
inline constexpr const wchar_t* userFolderValue = L"Local AppData";
inline constexpr const wchar_t* lowIntegrityFolderValue = L"{A520A1A4-1780-4FF6-BD18-167343C5AF16}";

/// How the name of a log file's mutex begins; the file's path follows, without its ending and with '_' for each '\\'.
inline constexpr const wchar_t* mutexPrefix = L"Global\\VxQrlLogging_";
/// Of processes that may make no global objects.
inline constexpr const wchar_t* localMutexPrefix = L"Local\\VxQrlLogging_";

/// Whose folder they go to: an administrator's to the machine's.
enum class Location { Machine, User, LowIntegrity };

/// The folder below the root that the registry or the environment names.
std::wstring makerFolder(Location location);
/// In that, the folder of the log that was opened with this first name; the second is the file's.
std::wstring logFolder(const std::wstring& makerFolder, const std::wstring& name1);

} // namespace VxQrlLogging
