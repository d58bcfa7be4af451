#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace devhost::machine {

/// Uses up one failure that is planned for "INTERFACE::METHOD" or "LIBRARY::FUNCTION" and gives its result; nothing
/// when none is. Throws as changeState does.
std::optional<std::int32_t> takePlannedFailure(std::string_view call);

/// Whether something of that name can be planned for: an interface, class or library that the stand-ins have, two
/// colons and a name.
bool isCall(std::string_view call);

} // namespace devhost::machine
