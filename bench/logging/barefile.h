#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The floor of a shared log file: the system calls that appending under a named mutex takes, and nothing
/// else. One thread.
class BareFile {
public:
    /// `rotateCount` old files are kept.
    BareFile(const std::wstring& folder, const std::wstring& stem, unsigned rotateCount);
    ~BareFile();
    BareFile(const BareFile&) = delete;
    BareFile& operator=(const BareFile&) = delete;

    /// Waits for the mutex, seeks to the end, writes, releases.
    void append(std::wstring_view record);
    /// The same with the size check, and the rotation when it is due.
    void appendRotating(std::wstring_view record, unsigned long long maxSize);

private:
    void open();
    void rotate();

    std::vector<std::wstring> m_names;
    void* m_mutex;
    void* m_file = nullptr;
};
