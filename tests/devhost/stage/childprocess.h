#pragma once

#include "vxtl/handle.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace support {

/// A program started by a test, with its output collected in files. Killed at destruction, as by a crash, if it still
/// runs.
class ChildProcess {
public:
    /// `program` is a full path, or a name in the programs' folder.
    ChildProcess(
        const std::filesystem::path& program, const std::wstring& arguments, const std::filesystem::path& outputFolder);
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) = default;

    /// The exit code; nothing when it has not ended within the time.
    std::optional<unsigned long> wait(std::chrono::milliseconds timeout = std::chrono::seconds(60)) const;
    std::string output() const;
    std::string errors() const;

private:
    std::filesystem::path m_outputFile;
    std::filesystem::path m_errorFile;
    std::unique_ptr<vx::KernelHandle> m_process;
};

/// The folder of the running test program, where all programs of the build are.
std::filesystem::path programFolder();

/// A new empty folder, removed at destruction; what a killed run left of the same name goes first.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

std::string readFile(const std::filesystem::path& path);
/// A JSON value per line.
std::vector<nlohmann::json> parseLines(const std::string& text);
void writeFile(const std::filesystem::path& path, const std::string& text);

} // namespace support
