#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace vx::tarn::common::utils {

// What a JSON value holds by reference, without the copy that the library's get makes. A value of another type throws
// the library's type error 302. Any thread.

const std::string& stringIn(const nlohmann::json& value);
const nlohmann::json::array_t& arrayIn(const nlohmann::json& value);
const nlohmann::json::object_t& objectIn(const nlohmann::json& value);

} // namespace vx::tarn::common::utils
