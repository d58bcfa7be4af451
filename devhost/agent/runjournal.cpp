#include "agent/runjournal.h"

#include "vxtl/handle.h"

#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <windows.h>

namespace devhost::agent {

namespace {

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
        throw std::runtime_error(std::string("the list of runs cannot be ") + what + ": error " + std::to_string(code));
    }

    vx::KernelHandle m_file;
    OVERLAPPED m_place{};
};

nlohmann::json makeEntry(const char* event)
{
    SYSTEMTIME now;
    GetSystemTime(&now);
    char time[32];
    snprintf(time, sizeof(time), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", now.wYear, now.wMonth, now.wDay, now.wHour,
        now.wMinute, now.wSecond, now.wMilliseconds);
    return {{"event", event}, {"time", time}, {"pid", GetCurrentProcessId()}};
}

bool isStart(const std::string& line, std::string_view list)
{
    const auto entry = nlohmann::json::parse(line, nullptr, false);
    return entry.is_object() && entry.value("event", "") == "start" && entry.value("list", "runs") == list;
}

std::string lineOf(const nlohmann::json& entry)
{
    return entry.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

} // namespace

std::size_t RunJournal::appendStart(const std::vector<std::string>& arguments, std::string_view list) const
{
    auto entry = makeEntry("start");
    entry["list"] = list;
    entry["arguments"] = arguments;
    LockedFile file(m_file);
    std::istringstream text(file.read());
    std::size_t before = 0;
    for (std::string line; std::getline(text, line);)
        before += isStart(line, list);
    file.append(lineOf(entry));
    return before;
}

void RunJournal::appendEnd(int exitCode) const
{
    auto entry = makeEntry("end");
    entry["exit_code"] = exitCode;
    LockedFile(m_file).append(lineOf(entry));
}

} // namespace devhost::agent
