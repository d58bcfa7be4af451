#pragma once

#include "reference/tokens.h"

#include <map>
#include <string>
#include <vector>

namespace tools {

/// The constants of sources that are texts or decimal numbers.
class Constants {
public:
    void add(Tokens source);
    /// All of that name, as classes may have one each.
    std::vector<std::string> valuesOf(std::string_view name) const;
    bool isValue(const std::string& text) const;

private:
    std::map<std::string, std::vector<std::string>, std::less<>> m_values;
};

} // namespace tools
