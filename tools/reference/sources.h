#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tools {

/// A source file of the product.
struct Source {
    std::string path; ///< from the project's folder, with slashes
    std::string text;

    /// The folder of its unit: two steps in sdk, three in src.
    std::string unit() const;
    bool isHeader() const { return path.ends_with(".h"); }
};

/// All of sdk and src below the project's folder, in the order of units and paths. Throws std::runtime_error and
/// std::filesystem::filesystem_error.
std::vector<Source> readSources(const std::filesystem::path& project);

/// The whole file. Throws std::runtime_error.
std::string readFile(const std::filesystem::path& path);

} // namespace tools
