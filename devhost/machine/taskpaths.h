#pragma once

#include "machine/machinestate.h"

#include <string_view>

// The scheduler's folders and tasks by their paths: "\" is the root, "\A" lies in it. Case does not matter.
namespace devhost::machine {

inline constexpr std::string_view rootPath = "\\";

/// The path of what is called `name` in a folder; `name` may lead through folders, and begin or end with a backslash.
/// An empty one gives the folder.
std::string joinPath(std::string_view folder, std::string_view name);
/// The folder that the path lies in; the root's is the root.
std::string parentPath(std::string_view path);
/// Without the folders.
std::string nameOf(std::string_view path);
bool samePath(std::string_view a, std::string_view b);

/// The root is always there.
bool hasFolder(const MachineState& state, std::string_view path);
/// Null when there is none.
ScheduledTask* findTask(MachineState& state, std::string_view path);
/// Whether the folder has tasks or folders.
bool isUsed(const MachineState& state, std::string_view folder);

} // namespace devhost::machine
