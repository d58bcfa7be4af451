#pragma once

#include "store/protocol/pipe.h"
#include "store/protocol/role.h"

#include <nlohmann/json_fwd.hpp>

namespace devhost::store {

/// Connects to the server of an instance and says who calls; `hello` holds "channel" and what that kind
/// needs. Null when nobody listens, the server refuses or the stop event (borrowed, may be null) fires.
std::unique_ptr<Pipe> openChannel(const std::wstring& instance, Role role, nlohmann::json hello, void* stopEvent);

} // namespace devhost::store
