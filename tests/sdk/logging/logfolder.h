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

    /// The current file of the log with these names, index 0, or a rotated one.
    std::filesystem::path file(int index = 0) const;
    /// A file's lines in UTF-8. Fails the test when the byte-order mark is missing or a line has no CR LF.
    std::vector<std::string> lines(int index = 0) const;
    /// The same behind the header, without the banners and the empty line.
    std::vector<std::string> messages() const;
    /// Names of all files in the log's folder, sorted.
    std::vector<std::string> files() const;

    /// Sets a configuration value; `key` is what follows the logger's key.
    static void configure(const wchar_t* key, const wchar_t* value, unsigned long number);
    static void configure(
        const wchar_t* key, const wchar_t* value, unsigned long type, const void* data, std::size_t size);

    static constexpr const wchar_t* name1 = L"prog";
    static constexpr const wchar_t* name2 = L"part";

    const std::filesystem::path root;
};
