#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>

// The lists that a store holds during a deployment, of any length and always the same for the same arguments.

/// What the agent writes after a scan.
nlohmann::json missingUpdates(std::size_t count);

/// The installation log: every second entry is of one of the first missing updates, in states of all kinds; the
/// others are of patches that are no longer missing.
nlohmann::json logEntries(std::size_t count);

/// Installation requests of all forms in turn, lists and rules before severities: one that covers everything when
/// `count` is 1, and otherwise nothing that covers every patch.
nlohmann::json requests(std::size_t count);

/// A queue of requests by identifier, all different.
nlohmann::json queuedIds(std::size_t count);
