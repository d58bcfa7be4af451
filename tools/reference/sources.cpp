#include "reference/sources.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace tools {

std::string Source::unit() const
{
    std::size_t end = 0;
    for (int steps = path.starts_with("sdk/") ? 2 : 3; steps > 0 && end != std::string::npos; --steps)
        end = path.find('/', end + 1);
    return path.substr(0, end);
}

std::string readFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file)
        throw std::runtime_error("can't be read: " + path.generic_string());
    return text;
}

std::vector<Source> readSources(const std::filesystem::path& project)
{
    std::vector<Source> sources;
    for (const char* top : {"sdk", "src"})
        for (const auto& entry : std::filesystem::recursive_directory_iterator(project / top))
            if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp")
                sources.push_back({entry.path().lexically_relative(project).generic_string(), readFile(entry.path())});
    std::sort(sources.begin(), sources.end(),
        [](const auto& a, const auto& b) { return std::pair(a.unit(), a.path) < std::pair(b.unit(), b.path); });
    return sources;
}

} // namespace tools
