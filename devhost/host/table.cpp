#include "host/table.h"

#include <algorithm>

namespace devhost::host {

namespace {

constexpr std::size_t gap = 2;

/// Characters, not bytes.
std::size_t widthOf(const std::string& text)
{
    return static_cast<std::size_t>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

} // namespace

std::vector<std::string> align(const Table& table)
{
    std::vector<std::size_t> widths(table.empty() ? 0 : table.front().size());
    for (const auto& row : table)
        for (std::size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(row[i]));
    std::vector<std::string> lines;
    for (const auto& row : table) {
        std::string line;
        for (std::size_t i = 0; i < widths.size(); ++i)
            line += row[i] + std::string(widths[i] + gap - widthOf(row[i]), ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(std::move(line));
    }
    return lines;
}

} // namespace devhost::host
