#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace devhost::program {

/// To be called first, with what wmain was given: from now on a fault ends the process at once, and what it prints
/// is UTF-8 whose lines end alike for any reader. Gives the arguments in UTF-8, also when the program's path stands
/// unquoted at the head of the command line and has blanks, as a scheduled task may begin.
std::vector<std::string> begin(int count, wchar_t** texts);

/// The folder that the program was started from.
std::filesystem::path ownFolder();

} // namespace devhost::program
