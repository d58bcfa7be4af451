#pragma once

#include "host/context.h"
#include "host/exitcode.h"

#include <optional>

namespace devhost::host {

/// Prints the patches that the plug-in has published. Throws CommandError, or StoreException when the store is not
/// there.
ExitCode showPatches(const Context& context);
/// Prints them, and again each time they have changed, until the user stops it or `count` were printed.
ExitCode followPatches(const Context& context, std::optional<unsigned> count);

} // namespace devhost::host
