#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace devhost::records {

inline constexpr auto flyers = L"flyers";
inline constexpr auto alerts = L"alerts";

/// What one library was told in all processes of an instance: a file with a JSON object in UTF-8 for each line, oldest
/// first, which only grows. In Vantorix\Development below the folder of programs' data. Any thread.
class RecordFile {
public:
    /// Opens nothing.
    RecordFile(const std::wstring& instance, const wchar_t* kind);

    const std::filesystem::path& path() const { return m_path; }
    /// Adds a line with the record's members, the "time" in UTC and the "pid" that writes. Waits for other writers.
    /// Throws std::runtime_error when the file can't be used, and the JSON library's parse error for a record that read
    /// would leave out.
    void append(const nlohmann::json& record) const;
    /// The whole lines from `position` in bytes on, which it moves behind them. None where there is no file; a line
    /// that is no JSON object is left out.
    std::vector<nlohmann::json> read(std::uint64_t& position) const;

private:
    const std::filesystem::path m_path;
};

} // namespace devhost::records
