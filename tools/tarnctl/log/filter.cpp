#include "tarnctl/log/filter.h"

#include <charconv>

namespace tarnctl::log {

using logreading::Moment;
using logreading::Record;

namespace {

std::optional<Moment> unitOf(std::string_view text)
{
    constexpr Moment second = 1000;
    if (text == "s")
        return second;
    if (text == "m")
        return 60 * second;
    if (text == "h")
        return 3600 * second;
    if (text == "d")
        return 86'400 * second;
    return std::nullopt;
}

} // namespace

std::optional<Moment> parseSince(std::string_view text, Moment now)
{
    if (const auto moment = logreading::parseMoment(text))
        return moment;
    std::uint32_t count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    const auto unit =
        error == std::errc() ? unitOf(text.substr(static_cast<std::size_t>(end - text.data()))) : std::nullopt;
    return unit ? std::optional(now - count * *unit) : std::nullopt;
}

bool Filter::passesAll() const
{
    return !asksForRecords() && !m_wanted.pattern;
}

bool Filter::asksForRecords() const
{
    return m_wanted.since || m_wanted.level || m_wanted.process || m_wanted.thread;
}

bool Filter::passes(std::string_view line, const Record* record)
{
    if (record) {
        m_passed = isWanted(*record);
        m_any = true;
    }
    // Before the first record nothing is known of a line but its text.
    const bool inWantedPlace = m_any ? m_passed : !asksForRecords();
    return inWantedPlace && (!m_wanted.pattern || m_wanted.pattern->isIn(line));
}

bool Filter::isWanted(const Record& record) const
{
    return (!m_wanted.since || record.time >= *m_wanted.since) &&
           (!m_wanted.level || record.level <= *m_wanted.level) &&
           (!m_wanted.process || record.process == *m_wanted.process) &&
           (!m_wanted.thread || record.thread == *m_wanted.thread);
}

} // namespace tarnctl::log
