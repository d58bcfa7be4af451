#include "tarnctl/bundle/redact.h"

#include <algorithm>
#include <array>

namespace tarnctl::bundle {

namespace {

constexpr std::string_view hidden = "<hidden>";
// None of these stands in a URL as it is written into a log.
constexpr std::string_view between = " \t\"'<>,;|[]{}()";
constexpr std::array<std::string_view, 4> secretNames = {"proxy-authorization", "authorization", "cookie", "password"};

char lower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
}

/// user:password@host: what stands between the first colon behind the scheme and the last at sign. Percent codes may
/// stand for both.
std::string redactWord(std::string_view word)
{
    const auto at = std::max(word.rfind('@') + 1, word.rfind("%40") + 1);
    if (at == 0)
        return std::string(word);
    const auto scheme = word.find("://");
    const auto begin = scheme == std::string_view::npos || scheme > at ? 0 : scheme + 3;
    const auto colon = std::min(word.find(':', begin), word.find("%3A", begin));
    if (colon == std::string_view::npos || colon + 1 >= at)
        return std::string(word);
    const auto behind = colon + (word[colon] == ':' ? 1 : 3);
    return std::string(word.substr(0, behind)).append(hidden).append(word.substr(at - 1));
}

std::string redactWords(std::string_view line)
{
    std::string text;
    while (!line.empty()) {
        const auto end = std::min(line.find_first_of(between), line.size());
        text += redactWord(line.substr(0, end));
        line.remove_prefix(end);
        const auto gap = std::min(line.find_first_not_of(between), line.size());
        text += line.substr(0, gap);
        line.remove_prefix(gap);
    }
    return text;
}

} // namespace

std::string redact(std::string_view line)
{
    auto text = redactWords(line);
    std::string lowered(text.size(), '\0');
    std::transform(text.begin(), text.end(), lowered.begin(), lower);
    for (const auto name : secretNames) {
        const auto place = lowered.find(name);
        if (place == std::string::npos)
            continue;
        const auto value = lowered.find_first_of(":=", place + name.size());
        // The name of something, not a value behind it.
        if (value != std::string::npos && value <= place + name.size() + 2)
            return text.substr(0, value + 1) + " " + std::string(hidden);
    }
    return text;
}

} // namespace tarnctl::bundle
