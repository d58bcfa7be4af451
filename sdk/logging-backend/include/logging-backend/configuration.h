#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct HKEY__;

namespace VxQrlLogging {

/// The logger's key, below the machine's or the user's hive, in the 32-bit view.
inline constexpr const wchar_t* loggingKey = L"SOFTWARE\\Vantorix\\QRL\\Logging";
/// Its values: 32-bit numbers, and a text for the folder of all logs.
inline constexpr const wchar_t* logLevelValue = L"LogLevel";
inline constexpr const wchar_t* maxSizeValue = L"LogMaxSizeKB";
inline constexpr const wchar_t* rotateCountValue = L"LogRotateCount";
inline constexpr const wchar_t* debugOutputValue = L"DebugOutputLogging";
inline constexpr const wchar_t* rootPathValue = L"RootPath";

/// A text value; empty when there is none. `access` is what the key is opened with.
std::wstring registryText(HKEY__* hive, const wchar_t* key, unsigned long access, const wchar_t* value);

/// The numeric configuration of one log file: a value stands at the key of the file (name1 and name2), of
/// the program (name1) or of all logs, and the nearest wins; 0xFFFFFFFF leaves it to the next. The keys are open for
/// the object's life.
class Configuration {
public:
    Configuration(const std::wstring& name1, const std::wstring& name2);

    /// Values of other types count as absent.
    std::optional<unsigned long> number(const wchar_t* value) const;

private:
    std::vector<std::shared_ptr<HKEY__>> m_keys; ///< of all logs, the program, the file; as many as there are
};

} // namespace VxQrlLogging
