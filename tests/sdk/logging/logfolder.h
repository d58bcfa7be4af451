#pragma once

#include "logging/details/utf8.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>
#include <windows.h>

/// A root folder for log files of its own, and the logger's registry configuration, both empty at the
/// start and gone at the end. One at a time.
class LogFolder {
public:
    LogFolder()
        : root(std::filesystem::temp_directory_path() / ("vx-log-test-" + std::to_string(GetCurrentProcessId())))
    {
        clear(root);
        std::filesystem::create_directories(root);
        SetEnvironmentVariableW(L"ProgramData", root.c_str());
    }
    ~LogFolder() { clear(root); }
    LogFolder(const LogFolder&) = delete;
    LogFolder& operator=(const LogFolder&) = delete;

    /// The current file of the log with these names, index 0, or a rotated one.
    std::filesystem::path file(int index = 0) const
    {
        const std::wstring suffix = index == 0 ? L".log" : L"." + std::to_wstring(index) + L".log";
        return root / L"Vantorix" / L"Log" / name1 / (name2 + suffix);
    }
    /// A file's lines in UTF-8. Fails the test when the byte-order mark is missing or a line has no CR LF.
    std::vector<std::string> lines(int index = 0) const
    {
        std::ifstream stream(file(index), std::ios::binary);
        std::wstring text;
        for (wchar_t unit; stream.read(reinterpret_cast<char*>(&unit), sizeof unit);)
            text += unit;
        EXPECT_EQ(stream.gcount(), 0) << index;
        EXPECT_TRUE(text.starts_with(L'\xFEFF')) << index;
        std::vector<std::string> lines;
        for (std::size_t begin = 1, end; begin < text.size(); begin = end + 2) {
            end = std::min(text.find(L"\r\n", begin), text.size());
            EXPECT_LT(end, text.size()) << "a line without an end";
            vx::logging::details::appendUtf8(lines.emplace_back(), text.substr(begin, end - begin));
        }
        return lines;
    }
    /// The same behind the header, without the banners and the empty line.
    std::vector<std::string> messages() const
    {
        std::vector<std::string> result;
        for (const std::string& line : lines())
            if (line.size() >= 40 && line.find("***  LOG") == std::string::npos)
                result.push_back(line.substr(40));
        return result;
    }
    /// Names of all files in the log's folder, sorted.
    std::vector<std::string> files() const
    {
        std::vector<std::string> result;
        std::error_code missing;
        for (const auto& entry : std::filesystem::directory_iterator(file().parent_path(), missing))
            result.push_back(entry.path().filename().string());
        std::ranges::sort(result);
        return result;
    }

    /// Sets a configuration value; `key` is what follows the logger's key.
    static void configure(const wchar_t* key, const wchar_t* value, unsigned long number)
    {
        configure(key, value, REG_DWORD, &number, sizeof number);
    }
    static void configure(
        const wchar_t* key, const wchar_t* value, unsigned long type, const void* data, std::size_t size)
    {
        const std::wstring path = std::wstring(loggingKey) + key;
        EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, path.c_str(), value, type, data, static_cast<DWORD>(size)), 0);
    }

    static constexpr const wchar_t* name1 = L"prog";
    static constexpr const wchar_t* name2 = L"part";

    const std::filesystem::path root;

private:
    static constexpr const wchar_t* loggingKey = L"SOFTWARE\\Vantorix\\QRL\\Logging";

    static void clear(const std::filesystem::path& root)
    {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, loggingKey);
    }
};
