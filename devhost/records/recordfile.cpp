#include "records/recordfile.h"

#include "ipc/instance.h"
#include "vxtl/parsejson.h"
#include "vxtl/scopeexit.h"
#include "vxtl/win32exception.h"

#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <windows.h>

namespace devhost::records {

namespace {

constexpr DWORD lockTimeoutMs = 5000;

std::filesystem::path dataFolder()
{
    wchar_t folder[1024];
    const auto length = GetEnvironmentVariableW(L"ProgramData", folder, static_cast<DWORD>(std::size(folder)));
    return std::filesystem::path(std::wstring_view(folder, length < std::size(folder) ? length : 0)) / L"Vantorix" /
           L"Development";
}

std::string utcText()
{
    SYSTEMTIME now;
    GetSystemTime(&now);
    char text[32];
    std::snprintf(text, sizeof(text), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", now.wYear, now.wMonth, now.wDay, now.wHour,
        now.wMinute, now.wSecond, now.wMilliseconds);
    return text;
}

/// Null for a line that is no JSON.
nlohmann::json parse(const std::string& line)
{
    try {
        return vx::parseJson(line);
    } catch (const nlohmann::json::exception&) {
        return nullptr;
    }
}

void appendLine(const std::filesystem::path& path, const std::string& line)
{
    const vx::KernelHandle file(CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_DELETE,
        nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    if (!file.isValid() || !WriteFile(file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr))
        VX_THROW_WIN32(GetLastError(), path.native());
}

} // namespace

RecordFile::RecordFile(const std::wstring& instance, const wchar_t* kind)
    : m_path(dataFolder() / (instance + L'.' + kind + L".jsonl")),
      m_lock(CreateMutexW(nullptr, FALSE, ipc::objectName(instance, kind).c_str()))
{
    if (!m_lock.isValid())
        VX_THROW_WIN32(GetLastError(), L"the lock of " + m_path.native());
}

void RecordFile::append(nlohmann::json record) const
{
    record["time"] = utcText();
    record["process"] = GetCurrentProcessId();
    const auto line = record.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    vx::parseJson(line);     // or it could never be read
    std::error_code ignored; // the file shows whether the folder can be used
    std::filesystem::create_directories(m_path.parent_path(), ignored);
    // Also when its last owner has died: what that one was writing is a line of its own at worst.
    if (const auto fired = WaitForSingleObject(m_lock.get(), lockTimeoutMs);
        fired != WAIT_OBJECT_0 && fired != WAIT_ABANDONED)
        VX_THROW_WIN32(fired == WAIT_TIMEOUT ? fired : GetLastError(), L"the lock of " + m_path.native());
    const vx::ScopeExit unlocked([this] { ReleaseMutex(m_lock.get()); });
    appendLine(m_path, line);
}

std::vector<nlohmann::json> RecordFile::read(std::uint64_t& position) const
{
    std::vector<nlohmann::json> found;
    std::ifstream file(m_path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(position));
    // A line without an end is still being written.
    for (std::string line; std::getline(file, line) && !file.eof();) {
        position += line.size() + 1;
        if (auto record = parse(line); record.is_object())
            found.push_back(std::move(record));
    }
    return found;
}

} // namespace devhost::records
