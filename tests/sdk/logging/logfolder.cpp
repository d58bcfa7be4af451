#include "logfolder.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <windows.h>

namespace {

constexpr const wchar_t* loggingKey = L"SOFTWARE\\Vantorix\\QRL\\Logging";

void deleteConfiguration()
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, loggingKey, 0, KEY_ALL_ACCESS | KEY_WOW64_32KEY, &key) != ERROR_SUCCESS)
        return;
    RegDeleteTreeW(key, nullptr);
    RegCloseKey(key);
}

} // namespace

LogFolder::LogFolder()
    : m_root(std::filesystem::temp_directory_path() / ("vx-log-test-" + std::to_string(GetCurrentProcessId())))
{
    clear();
    std::filesystem::create_directories(m_root);
    SetEnvironmentVariableW(L"ProgramData", m_root.c_str());
}

LogFolder::~LogFolder()
{
    clear();
}

void LogFolder::clear() const
{
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
    deleteConfiguration();
}

std::filesystem::path LogFolder::file(int index) const
{
    const std::wstring suffix = index == 0 ? L".log" : L"." + std::to_wstring(index) + L".log";
    return m_root / L"Vantorix" / L"Log" / name1 / (name2 + suffix);
}

std::vector<std::string> LogFolder::lines(int index) const
{
    std::vector<std::string> result;
    for (const std::wstring& line : readLogLines(file(index)))
        result.emplace_back(line.begin(), line.end());
    return result;
}

std::vector<std::string> LogFolder::messages(int index) const
{
    std::vector<std::string> result;
    for (const std::string& line : lines(index))
        if (line.size() >= 40 && line.find("***  LOG") == std::string::npos)
            result.push_back(line.substr(40));
    return result;
}

std::vector<std::string> LogFolder::files() const
{
    std::vector<std::string> result;
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(file().parent_path(), missing))
        result.push_back(entry.path().filename().string());
    std::sort(result.begin(), result.end());
    return result;
}

void LogFolder::configure(const wchar_t* key, const wchar_t* value, unsigned long number)
{
    configure(key, value, REG_DWORD, &number, sizeof number);
}

void LogFolder::configure(
    const wchar_t* key, const wchar_t* value, unsigned long type, const void* data, unsigned long size)
{
    HKEY opened = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, (std::wstring(loggingKey) + key).c_str(), 0, nullptr, 0,
                  KEY_ALL_ACCESS | KEY_WOW64_32KEY, nullptr, &opened, nullptr),
        ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(opened, value, 0, type, static_cast<const BYTE*>(data), size), ERROR_SUCCESS);
    RegCloseKey(opened);
}

std::vector<std::wstring> readLogLines(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << file;
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_EQ(bytes.size() % sizeof(wchar_t), 0u) << file;
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::copy_n(bytes.data(), text.size() * sizeof(wchar_t), reinterpret_cast<char*>(text.data()));
    EXPECT_TRUE(text.starts_with(L'\xFEFF')) << file;
    std::vector<std::wstring> lines;
    for (std::size_t begin = 1; begin < text.size();) {
        const auto end = text.find(L"\r\n", begin);
        if (end == std::wstring::npos) {
            ADD_FAILURE() << "a line without an end in " << file;
            break;
        }
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 2;
    }
    return lines;
}
