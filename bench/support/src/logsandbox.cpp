#include "bench/logsandbox.h"

#include <stdexcept>
#include <windows.h>

namespace bench {

namespace {

constexpr const wchar_t* loggingKey = L"SOFTWARE\\Vantorix\\QRL\\Logging";

HKEY createKey()
{
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, loggingKey, 0, nullptr, 0, KEY_ALL_ACCESS | KEY_WOW64_32KEY, nullptr, &key,
            nullptr) != ERROR_SUCCESS)
        throw std::runtime_error("the logger's configuration can't be written");
    return key;
}

void setNumber(HKEY key, const wchar_t* value, DWORD number)
{
    RegSetValueExW(key, value, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
}

void forgetConfiguration()
{
    const HKEY key = createKey();
    RegDeleteTreeW(key, nullptr);
    RegCloseKey(key);
}

} // namespace

LogSandbox::LogSandbox()
{
    forgetConfiguration();
}

LogSandbox::~LogSandbox()
{
    forgetConfiguration();
}

std::filesystem::path LogSandbox::folder(const wchar_t* name1) const
{
    return m_folder.path() / L"Vantorix" / L"Log" / name1;
}

void LogSandbox::configure(unsigned long maxSizeKb, unsigned long rotateCount)
{
    const HKEY key = createKey();
    setNumber(key, L"LogMaxSizeKB", maxSizeKb);
    setNumber(key, L"LogRotateCount", rotateCount);
    RegCloseKey(key);
}

} // namespace bench
