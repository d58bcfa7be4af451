#pragma once

#include <filesystem>

/// Rows of what the plug-in does while it processes and nothing happens: loaded and run as a host does it, on a
/// store that this process serves; watching, and with the service stopper polling. `root` takes the store's file and
/// has the log. While it runs, tarnctl of the plug-in's folder looks at it. True when the reach is met.
bool measureIdle(const std::filesystem::path& plugin, const std::filesystem::path& root);
