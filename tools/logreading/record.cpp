#include "logreading/record.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace logreading {

namespace {

struct LevelRow {
    Level level;
    std::string_view prefix;
    std::string_view name;
};

constexpr std::array<LevelRow, 6> levels = {{
    {Level::Fatal, "*F", "fatal"},
    {Level::Error, "*E", "error"},
    {Level::Warning, ".W", "warning"},
    {Level::Info, " I", "info"},
    {Level::Debug, " D", "debug"},
    {Level::Verbose, " V", "verbose"},
}};

// The header's form: every other character stands for itself.
constexpr std::string_view headerForm = "dddd-dd-dd dd:dd:dd.ddd [xxxx.xxxx] pp: ";
constexpr std::string_view momentForm = headerForm.substr(0, headerForm.find(" ["));

constexpr bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// The form's characters that a character fits, as bits: of each line so many are looked at that it has to be quick.
enum Fitting : std::uint8_t { Digit = 1, Hexadecimal = 2, Any = 4, Itself = 8 };

constexpr auto fittings = [] {
    std::array<std::uint8_t, 256> table{};
    for (unsigned code = 0; code != table.size(); ++code) {
        const auto character = static_cast<char>(code);
        const bool isHexadecimal = isDigit(character) || (character >= 'a' && character <= 'f');
        table[code] =
            static_cast<std::uint8_t>(Any | (isDigit(character) ? Digit : 0) | (isHexadecimal ? Hexadecimal : 0));
    }
    return table;
}();

constexpr std::uint8_t wantedBy(char form)
{
    return form == 'd' ? Digit : form == 'x' ? Hexadecimal : form == 'p' ? Any : Itself;
}

constexpr auto headerWants = [] {
    std::array<std::uint8_t, headerForm.size()> wants{};
    for (std::size_t place = 0; place != wants.size(); ++place)
        wants[place] = wantedBy(headerForm[place]);
    return wants;
}();

/// Whether the text begins as a header does, for this many characters.
bool hasForm(std::string_view text, std::size_t size)
{
    if (text.size() < size)
        return false;
    for (std::size_t place = 0; place < size; ++place) {
        const auto wanted = headerWants[place];
        const bool fits = wanted == Itself ? text[place] == headerForm[place]
                                           : (fittings[static_cast<unsigned char>(text[place])] & wanted) != 0;
        if (!fits)
            return false;
    }
    return true;
}

/// Of digits that have the form.
unsigned number(std::string_view digits, unsigned base = 10)
{
    unsigned value = 0;
    for (const char digit : digits)
        value = value * base + static_cast<unsigned>(isDigit(digit) ? digit - '0' : digit - 'a' + 10);
    return value;
}

/// Of a text that has the form, or the front of it down to the day. Small numbers up to the last step: each line of a
/// log comes by here.
std::optional<Moment> momentOf(std::string_view text)
{
    using namespace std::chrono;
    const auto part = [&](std::size_t place, std::size_t size) {
        return place < text.size() ? static_cast<int>(number(text.substr(place, size))) : 0;
    };
    const year_month_day date(
        year(part(0, 4)), month(static_cast<unsigned>(part(5, 2))), day(static_cast<unsigned>(part(8, 2))));
    const int hour = part(11, 2), minute = part(14, 2), second = part(17, 2);
    if (!date.ok() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    constexpr Moment dayLength = 86'400'000;
    const int inDay = ((hour * 60 + minute) * 60 + second) * 1000 + part(20, 3);
    return sys_days(date).time_since_epoch().count() * dayLength + inDay;
}

std::optional<Level> levelOfPrefix(std::string_view prefix)
{
    for (const auto& row : levels)
        if (row.prefix[0] == prefix[0] && row.prefix[1] == prefix[1])
            return row.level;
    return std::nullopt;
}

void readMessage(Record& record)
{
    std::size_t blanks = 0;
    while (blanks < record.message.size() && record.message[blanks] == ' ')
        ++blanks;
    record.depth = static_cast<std::uint16_t>(blanks / 2);
    record.message.remove_prefix(blanks);
    if (record.message.size() < 2)
        return;
    const bool entered = record.message.front() == '{';
    if ((!entered && record.message.front() != '}') || record.message[1] != ' ')
        return;
    record.scope = entered ? Scope::Entered : Scope::Left;
    record.message.remove_prefix(2);
}

} // namespace

std::string_view nameOf(Level level)
{
    return levels.at(static_cast<std::size_t>(level) - 1).name;
}

std::optional<Level> levelOf(std::string_view name)
{
    const auto row = std::find_if(
        levels.begin(), levels.end(), [name](const LevelRow& candidate) { return candidate.name == name; });
    return row == levels.end() ? std::nullopt : std::optional(row->level);
}

std::optional<Moment> parseMoment(std::string_view text)
{
    const bool isWhole = text.size() == momentForm.size();
    const bool isFront = text.size() == 10 || text.size() == 16 || text.size() == 19;
    return (isWhole || isFront) && hasForm(text, text.size()) ? momentOf(text) : std::nullopt;
}

std::string formatMoment(Moment moment)
{
    using namespace std::chrono;
    const auto day = floor<days>(sys_time<milliseconds>(milliseconds(moment)));
    const year_month_day date(day);
    const hh_mm_ss time(milliseconds(moment) - duration_cast<milliseconds>(day.time_since_epoch()));
    char text[64];
    std::snprintf(text, sizeof(text), "%04d-%02u-%02u %02d:%02d:%02d.%03d", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
        static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()),
        static_cast<int>(time.subseconds().count()));
    return text;
}

std::optional<Record> parseRecord(std::string_view line)
{
    if (!hasForm(line, headerForm.size()))
        return std::nullopt;
    const auto time = momentOf(line.substr(0, momentForm.size()));
    const auto level = levelOfPrefix(line.substr(36, 2));
    if (!time || !level)
        return std::nullopt;
    Record record;
    record.line = line;
    record.message = line.substr(headerForm.size());
    record.time = *time;
    record.process = static_cast<std::uint16_t>(number(line.substr(25, 4), 16));
    record.thread = static_cast<std::uint16_t>(number(line.substr(30, 4), 16));
    record.level = *level;
    readMessage(record);
    return record;
}

} // namespace logreading
