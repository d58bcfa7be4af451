#pragma once

#include <string>

struct HINSTANCE__;

/// The lines at the head of a log that tell which process hosts this module and which build of it runs.
/// All texts are UTF-8. Nothing here throws std::exception: a failure becomes the line.
namespace vx::logging::startup_header {

/// Process file, its id and its parent's id.
std::string getStartProcessInfo();

/// File of this module, its size and times. An empty version reads "<no version>".
std::string getModuleFileInfo(const std::string& versionText);

/// "1.2.3.4" from the version resource of a loaded module; empty when it has none or its file can't be read.
std::string moduleVersionText(HINSTANCE__* module);

/// Path of the module that this code is linked into; empty on failure.
std::wstring moduleFile();

/// Writes both lines to the process-wide log, with the version of this module. To be called
/// right after the log is opened.
void write() noexcept;

} // namespace vx::logging::startup_header
