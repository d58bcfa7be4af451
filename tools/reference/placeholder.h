#pragma once

#include "reference/constants.h"

namespace tools {

/// What an inserted expression is called on the page: `m_driver->lastError()` is "lastError", `toText(*time)` is
/// "time".
std::string placeholderOf(Tokens expression);

/// The texts that an expression stands for: literals and constants as they are, other parts as "<name>". More than one
/// where a constant has several values.
std::vector<std::string> textsOf(Tokens expression, const Constants& constants);
/// Their texts one behind the other.
std::vector<std::string> joinedTexts(const std::vector<Tokens>& expressions, const Constants& constants);

} // namespace tools
