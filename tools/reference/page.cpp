#include "reference/page.h"

namespace tools {

std::string quoted(const std::string& text)
{
    // Two ticks where there is one inside.
    return text.find('`') == std::string::npos ? "`" + text + "`" : "`` " + text + " ``";
}

std::string tableRow(std::initializer_list<std::string> cells)
{
    std::string row = "|";
    for (const auto& cell : cells) {
        row += ' ';
        for (const char letter : cell)
            row += letter == '|' ? "\\|" : letter == '\n' ? "\\n" : std::string(1, letter);
        row += " |";
    }
    return row + '\n';
}

} // namespace tools
