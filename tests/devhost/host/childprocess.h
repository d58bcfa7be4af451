#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace support {

/// A program started by a test, with its output collected in files. Killed at destruction if it still runs.
class ChildProcess {
public:
    /// `commandLine` is the whole line, program first.
    ChildProcess(const std::wstring& commandLine, const std::filesystem::path& outputFolder);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The exit code; nothing when it has not ended within the time.
    std::optional<unsigned long> wait(std::chrono::milliseconds timeout = std::chrono::seconds(60));
    /// Ends it as a crash would, if it still runs.
    void kill();
    std::string output() const;
    std::string errors() const;

private:
    std::filesystem::path m_outputFile;
    std::filesystem::path m_errorFile;
    void* m_process;
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
void writeFile(const std::filesystem::path& path, const std::string& text);

} // namespace support
