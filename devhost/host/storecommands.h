#pragma once

#include "host/context.h"
#include "host/exitcode.h"

#include <optional>
#include <string>
#include <vector>

// The commands that work on the values and the behaviour of a running store. All throw CommandError, or
// StoreException when the store is not there or refuses.
namespace devhost::host {

ExitCode getValue(const Context& context, const std::string& key);
/// Without a type the catalogue's is taken.
ExitCode setValue(const Context& context, const std::string& key, const std::string& text, const std::string& typeName);
ExitCode deleteValue(const Context& context, const std::string& key);
ExitCode listValues(const Context& context, const std::string& prefix);
/// Prints changes until the user stops it or `count` were told; 0 is no limit. No keys means all.
ExitCode watchValues(const Context& context, const std::vector<std::string>& keys, unsigned count);
ExitCode enableFeature(const Context& context, bool enable);
/// `what` is "on", "off", or how many seconds the store is to be away.
ExitCode makeOutage(const Context& context, const std::string& what);
/// `operation` "clear" forgets all planned faults.
ExitCode planFault(
    const Context& context, const std::string& operation, int code, unsigned count, const std::string& key);

} // namespace devhost::host
