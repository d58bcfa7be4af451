#pragma once

#include <filesystem>
#include <optional>

namespace devhost::host {

/// The program that the product asks users to reboot with; none when the registry names none.
std::optional<std::filesystem::path> readRestartProgram();
/// Makes it the one; without a program the registry names none from then on. Throws CommandError.
void writeRestartProgram(const std::optional<std::filesystem::path>& program);

} // namespace devhost::host
