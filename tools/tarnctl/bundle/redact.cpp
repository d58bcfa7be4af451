#include "tarnctl/bundle/redact.h"

#include <algorithm>
#include <array>

namespace tarnctl::bundle {

namespace {

constexpr auto npos = std::string_view::npos;
constexpr std::string_view hidden = "<hidden>";
// Anything else may stand in a password.
constexpr std::string_view between = " \t\"'<>";
constexpr std::string_view scheme = "://";
constexpr std::array<std::string_view, 10> secretNames = {
    "password", "passwd", "pwd", "passphrase", "secret", "token", "apikey", "credential", "authorization", "cookie"};

std::string lowered(std::string_view text)
{
    std::string result(text);
    for (auto& character : result)
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character | 0x20);
    return result;
}

/// The text without what stands from one place to another.
std::string hide(std::string_view text, std::size_t from, std::size_t to)
{
    return std::string(text.substr(0, from)).append(hidden).append(text.substr(to));
}

/// Behind the first of the two forms of a character; npos for none.
std::size_t behind(std::string_view word, std::size_t from, char plain, std::string_view coded)
{
    const auto at = word.find(plain, from), code = word.find(coded, from);
    return at == npos && code == npos ? npos : at < code ? at + 1 : code + coded.size();
}

/// user:password@host: what stands between the first colon behind the scheme and the last at sign. Percent codes may
/// stand for both.
std::string redactWord(std::string_view word)
{
    const auto small = lowered(word);
    const auto plainAt = small.rfind('@'), codedAt = small.rfind("%40");
    const auto at = plainAt == npos ? codedAt : codedAt == npos ? plainAt : std::max(plainAt, codedAt);
    const auto found = small.find(scheme);
    const auto colon = behind(small, found == npos || found > at ? 0 : found + scheme.size(), ':', "%3a");
    return at == npos || colon >= at ? std::string(word) : hide(word, colon, at);
}

/// Whether a URL breaks off within a password that has a blank: behind its colon no port follows.
bool isOpen(std::string_view word)
{
    const auto found = word.find(scheme);
    const auto colon = found == npos ? npos : word.find(':', found + scheme.size());
    if (colon == npos || word.find('@', colon) != npos)
        return false;
    const auto behindPort = std::min(word.find_first_not_of("0123456789", colon + 1), word.size());
    return behindPort < word.size() ? std::string_view("/?#,;).]}").find(word[behindPort]) == npos : false;
}

std::string redactWords(std::string_view line)
{
    std::string text;
    while (!line.empty()) {
        auto end = std::min(line.find_first_of(between), line.size());
        if (const auto at = line.rfind('@'); at != npos && at > end && isOpen(line.substr(0, end)))
            end = std::min(line.find_first_of(between, at), line.size());
        text += redactWord(line.substr(0, end));
        line.remove_prefix(end);
        const auto gap = std::min(line.find_first_not_of(between), line.size());
        text += line.substr(0, gap);
        line.remove_prefix(gap);
    }
    return text;
}

/// Whether the word at this place is an option of a command line: --password, /pwd.
bool isOption(std::string_view line, std::size_t place)
{
    const auto blank = line.substr(0, place).find_last_of(between);
    const auto first = line[blank == npos ? 0 : blank + 1];
    return first == '-' || first == '/';
}

/// Where the value of the name at this place begins; npos where it is just mentioned.
std::size_t valueOf(std::string_view line, std::size_t place, std::size_t size)
{
    const auto nameEnd = line.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_-", place + size);
    const auto next = nameEnd == npos ? npos : line.find_first_not_of(" \t\"'\\", nameEnd);
    if (next == npos)
        return npos;
    if (line[next] == ':' || line[next] == '=')
        return next + 1;
    return next > nameEnd && isOption(line, place) ? nameEnd : npos;
}

} // namespace

std::string redact(std::string_view line)
{
    const auto text = redactWords(line);
    const auto small = lowered(text);
    auto first = npos;
    for (const auto name : secretNames)
        for (auto place = small.find(name); place != npos; place = small.find(name, place + 1))
            first = std::min(first, valueOf(small, place, name.size()));
    return first == npos ? text : text.substr(0, first) + " " + std::string(hidden);
}

} // namespace tarnctl::bundle
