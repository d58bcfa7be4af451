#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// A root folder for log files of its own, and the logger's registry configuration, both empty at the
/// start and gone at the end. One at a time.
class LogFolder {
public:
    LogFolder();
    ~LogFolder();
    LogFolder(const LogFolder&) = delete;
    LogFolder& operator=(const LogFolder&) = delete;

    const std::filesystem::path& root() const { return m_root; }
    /// The current file of the log with these names, index 0, or a rotated one.
    std::filesystem::path file(int index = 0) const;
    /// The texts of a file's lines, ASCII only.
    std::vector<std::string> lines(int index = 0) const;
    /// The same behind the header, without the banners and the empty line.
    std::vector<std::string> messages(int index = 0) const;
    /// Names of all files in the log's folder, sorted.
    std::vector<std::string> files() const;

    /// Sets a configuration value; `key` is what follows the logger's key.
    static void configure(const wchar_t* key, const wchar_t* value, unsigned long number);
    static void configure(
        const wchar_t* key, const wchar_t* value, unsigned long type, const void* data, unsigned long size);

    static constexpr const wchar_t* name1 = L"prog";
    static constexpr const wchar_t* name2 = L"part";

private:
    void clear() const;

    std::filesystem::path m_root;
};

/// Reads a UTF-16 file; fails the test when the byte-order mark is missing or a line has no CR LF.
std::vector<std::wstring> readLogLines(const std::filesystem::path& file);
