#include "journal/journal.h"

#include "vxtl/handle.h"
#include "vxtl/parsejson.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <windows.h>

namespace devhost::journal {

namespace {

using nlohmann::json;

/// The file, locked against other writers. Readers are not kept out: the locked byte lies far behind
/// the end.
class LockedFile {
public:
    explicit LockedFile(const std::filesystem::path& path)
        : m_file(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
              nullptr))
    {
        if (!m_file.isValid())
            fail("opened");
        m_place.Offset = 0x7FFFFFFF;
        if (!LockFileEx(m_file.get(), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &m_place))
            fail("locked");
    }
    ~LockedFile() { UnlockFileEx(m_file.get(), 0, 1, 0, &m_place); }
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;

    std::string read()
    {
        std::string text(GetFileSize(m_file.get(), nullptr), '\0');
        DWORD got = 0;
        if (!ReadFile(m_file.get(), text.data(), static_cast<DWORD>(text.size()), &got, nullptr))
            fail("read");
        text.resize(got);
        return text;
    }

    void append(const std::string& text)
    {
        SetFilePointer(m_file.get(), 0, nullptr, FILE_END);
        DWORD written = 0;
        if (!WriteFile(m_file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr))
            fail("written");
    }

private:
    [[noreturn]] static void fail(const char* what)
    {
        const auto code = GetLastError();
        throw std::runtime_error(std::string("the journal cannot be ") + what + ": error " + std::to_string(code));
    }

    vx::KernelHandle m_file;
    OVERLAPPED m_place{};
};

std::string timeText()
{
    SYSTEMTIME now;
    GetSystemTime(&now);
    char time[32];
    snprintf(time, sizeof(time), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", now.wYear, now.wMonth, now.wDay, now.wHour,
        now.wMinute, now.wSecond, now.wMilliseconds);
    return time;
}

std::vector<json> readLines(std::istream& text)
{
    std::vector<json> entries;
    for (std::string line; std::getline(text, line);) {
        try {
            entries.push_back(vx::parseJson(line));
        } catch (const json::exception&) {
            // One that is just being written, or that somebody edited.
        }
    }
    return entries;
}

} // namespace

std::vector<json> Journal::append(json entry) const
{
    entry["time"] = timeText();
    entry["pid"] = GetCurrentProcessId();
    LockedFile file(m_file);
    std::istringstream before(file.read());
    file.append(entry.dump(-1, ' ', false, json::error_handler_t::replace) + "\n");
    return readLines(before);
}

std::vector<json> Journal::read() const
{
    std::ifstream file(m_file, std::ios::binary);
    return readLines(file);
}

} // namespace devhost::journal
