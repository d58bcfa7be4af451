#pragma once

#include "tarnctl/health/facts.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarnctl::health {

/// Unreadable: what the check needs could not be read.
enum class Grade { Good, Finding, Unreadable };

std::string_view nameOf(Grade grade);

/// What one check says.
struct Verdict {
    std::string_view check;
    Grade grade = Grade::Good;
    std::string evidence;
    std::string advice; ///< what to do; empty when good
};

/// All checks, in the order in which an administrator goes on.
std::vector<Verdict> examine(const Facts& facts);

} // namespace tarnctl::health
