#pragma once

#include "logging/details/utf8.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <windows.h>

/// A root folder for log files of its own, and the logger's registry configuration, both empty at the
/// start and gone at the end. One at a time.
class LogFolder {
public:
    LogFolder()
    {
        clear();
        std::filesystem::create_directories(root);
        SetEnvironmentVariableW(L"ProgramData", root.c_str());
    }
    ~LogFolder() { clear(); }
    LogFolder(const LogFolder&) = delete;

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
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        const std::wstring_view wide(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t));
        EXPECT_TRUE(bytes.size() % sizeof(wchar_t) == 0 && wide.starts_with(L'\xFEFF')) << index;
        std::string text;
        vx::logging::details::appendUtf8(text, wide);
        std::vector<std::string> lines;
        std::size_t begin = std::min<std::size_t>(3, text.size()); // behind the mark
        for (std::size_t end; (end = text.find("\r\n", begin)) != std::string::npos; begin = end + 2)
            lines.push_back(text.substr(begin, end - begin));
        EXPECT_EQ(begin, text.size()) << "a line without an end";
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
        for (const auto& entry : std::filesystem::directory_iterator(file().parent_path()))
            result.push_back(entry.path().filename().string());
        std::ranges::sort(result);
        return result;
    }

    /// Sets a configuration value; `key` is what follows the logger's key.
    static void configure(const wchar_t* key, const wchar_t* value, DWORD type, const void* data, DWORD size)
    {
        const std::wstring path = loggingKey + key;
        EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, path.c_str(), value, type, data, size), 0);
    }
    static void configure(const wchar_t* value, DWORD number)
    {
        configure(L"", value, REG_DWORD, &number, sizeof number);
    }

    static constexpr const wchar_t* name1 = L"prog";
    static constexpr const wchar_t* name2 = L"part";

    const std::filesystem::path root =
        std::filesystem::temp_directory_path() / ("vx-log-test-" + std::to_string(GetCurrentProcessId()));

private:
    void clear() const
    {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, loggingKey.c_str());
    }

    static inline const std::wstring loggingKey = L"SOFTWARE\\Vantorix\\QRL\\Logging";
};
