#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace devhost::host {

/// One line for people on what a library was told. Throws the JSON library's type error for a record that none of the
/// libraries wrote.
std::string flyerText(const nlohmann::json& record);
std::string alertText(const nlohmann::json& record);

} // namespace devhost::host
