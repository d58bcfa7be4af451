#include "records/recordfile.h"

#include "journal/journal.h"
#include "vxtl/parsejson.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <windows.h>

namespace devhost::records {

namespace {

std::filesystem::path dataFolder()
{
    wchar_t folder[1024];
    const auto length = GetEnvironmentVariableW(L"ProgramData", folder, static_cast<DWORD>(std::size(folder)));
    return std::filesystem::path(std::wstring_view(folder, length < std::size(folder) ? length : 0)) / L"Vantorix" /
           L"Development";
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

} // namespace

RecordFile::RecordFile(const std::wstring& instance, const wchar_t* kind)
    : m_path(dataFolder() / (instance + L'.' + kind + L".jsonl"))
{}

void RecordFile::append(const nlohmann::json& record) const
{
    // Or it could never be read.
    vx::parseJson(record.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    std::error_code ignored; // the file shows whether the folder can be used
    std::filesystem::create_directories(m_path.parent_path(), ignored);
    journal::Journal(m_path).append(record);
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
