#pragma once

#include <filesystem>

/// Rows of what the plug-in does while it processes and nothing happens: loaded and run as a host does it, on a
/// store that this process serves; watching, and with the service stopper polling. `root` takes the store's file and
/// has the log. True when the reach is met.
bool measureIdle(const std::filesystem::path& plugin, const std::filesystem::path& root);
