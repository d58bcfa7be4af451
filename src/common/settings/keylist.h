#pragma once

#include "common/settings/keyrow.h"

#include <vector>

namespace vx::tarn {

/// All rows of all trees, in the order of their names.
std::vector<KeyInfo> listKeys();

} // namespace vx::tarn
