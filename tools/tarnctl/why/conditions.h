#pragma once

#include "tarnctl/health/facts.h"
#include "tarnctl/why/explanation.h"

#include <string>
#include <vector>

namespace tarnctl::why {

/// How it stands now: what keeps the subject from happening, and when it comes next. One sentence each.
std::vector<std::string> conditions(const health::Facts& facts, Subject subject);

} // namespace tarnctl::why
