#pragma once

#include <optional>
#include <regex>
#include <string>
#include <string_view>

namespace tarnctl::log {

/// A regular expression to be found somewhere in a line: ECMAScript without references back, for characters and not for
/// their bytes. Takes time in proportion to the line, whatever the expression.
class Pattern {
public:
    /// UTF-8. Throws std::regex_error for what is none.
    explicit Pattern(const std::string& text);

    bool isIn(std::string_view line) const;

private:
    std::string m_text; ///< is looked for as it stands when there is no expression
    std::optional<std::wregex> m_expression;
};

} // namespace tarnctl::log
