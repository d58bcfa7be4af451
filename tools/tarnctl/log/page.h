#pragma once

#include <string_view>

namespace tarnctl::log {

/// The page without its data: page.html, which the build puts into the program.
extern const std::string_view page;

} // namespace tarnctl::log
