#pragma once

#include <string>

namespace tools::qrlprobe {

/// The report's text file: the one that the environment variable QRL_PROBE_REPORT names, else "qrl-probe.report.txt"
/// beside the library. It stays the same file wherever the process's current folder goes.
class ReportFile {
public:
    /// Reads the environment.
    ReportFile();

    /// Puts the UTF-8 text in the place of what the file holds. False when it can't be written.
    bool write(const std::string& text) const noexcept;

private:
    std::wstring m_path;
};

/// Path and number of the process that loaded the library.
std::string describeProcess();

/// Shows the line, which has no end, in the debugger's output.
void showInDebugger(const std::string& line);

} // namespace tools::qrlprobe
