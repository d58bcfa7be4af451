#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>

namespace vx::tarn::common {

/// The value of a message's body: null for none, and for one that is no JSON a text that holds it, with a warning in
/// the log. Any thread; throws std::bad_alloc only.
nlohmann::json readMessageBody(const void* data, std::size_t dataSize);

} // namespace vx::tarn::common
