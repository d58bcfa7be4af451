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

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isHexadecimal(char character)
{
    return isDigit(character) || (character >= 'a' && character <= 'f');
}

bool hasForm(std::string_view text, std::string_view form)
{
    if (text.size() < form.size())
        return false;
    for (std::size_t place = 0; place < form.size(); ++place) {
        const char wanted = form[place], found = text[place];
        const bool fits = wanted == 'd'   ? isDigit(found)
                          : wanted == 'x' ? isHexadecimal(found)
                                          : wanted == 'p' || wanted == found;
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

/// Of a text that has the form, or the front of it down to the day.
std::optional<Moment> momentOf(std::string_view text)
{
    using namespace std::chrono;
    const auto part = [&](std::size_t place, std::size_t size) {
        return place < text.size() ? static_cast<int>(number(text.substr(place, size))) : 0;
    };
    const year_month_day date(
        year(part(0, 4)), month(static_cast<unsigned>(part(5, 2))), day(static_cast<unsigned>(part(8, 2))));
    if (!date.ok() || part(11, 2) > 23 || part(14, 2) > 59 || part(17, 2) > 59)
        return std::nullopt;
    const auto time = hours(part(11, 2)) + minutes(part(14, 2)) + seconds(part(17, 2)) + milliseconds(part(20, 3));
    return (duration_cast<milliseconds>(sys_days(date).time_since_epoch()) + time).count();
}

std::optional<Level> levelOfPrefix(std::string_view prefix)
{
    const auto row = std::find_if(
        levels.begin(), levels.end(), [prefix](const LevelRow& candidate) { return candidate.prefix == prefix; });
    return row == levels.end() ? std::nullopt : std::optional(row->level);
}

void readMessage(Record& record)
{
    const auto blanks = std::min(record.message.find_first_not_of(' '), record.message.size());
    record.depth = static_cast<std::uint16_t>(blanks / 2);
    record.message.remove_prefix(blanks);
    const bool entered = record.message.starts_with("{ ");
    if (!entered && !record.message.starts_with("} "))
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
    constexpr std::string_view form = momentForm;
    const bool isWhole = text.size() == form.size();
    const bool isFront = text.size() == 10 || text.size() == 16 || text.size() == 19;
    return (isWhole || isFront) && hasForm(text, form.substr(0, text.size())) ? momentOf(text) : std::nullopt;
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
    if (!hasForm(line, headerForm))
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
