#include "logreading/linesplitter.h"

#include "logreading/record.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace logreading {

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr std::string_view replacementText = "\xEF\xBF\xBD";
constexpr char32_t byteOrderMark = 0xFEFF;
// Far beyond the longest record: what goes on so long without an end is no log, and is not to fill the memory.
constexpr std::size_t longestLine = 1'048'576;

char32_t unitAt(std::string_view bytes, std::size_t position)
{
    return static_cast<unsigned char>(bytes[position]) | static_cast<unsigned char>(bytes[position + 1]) << 8;
}

void append(std::string& text, char32_t character)
{
    const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6);
        tail(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | character >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | character >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

bool isHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

bool isPlain(const char* unit)
{
    return unit[1] == '\0' && static_cast<signed char>(unit[0]) > 0 && unit[0] != '\n';
}

/// Copies UTF-16 up to a line feed or what is no ASCII; gives how many units that were. This runs for each character of
/// a log: two at a time.
std::size_t copyPlain(const char* from, std::size_t units, char* to)
{
    std::size_t done = 0;
    for (; done + 2 <= units; done += 2) {
        std::uint32_t pair;
        std::memcpy(&pair, from + 2 * done, sizeof(pair));
        // Of ASCII, each half that is not zero carries into its bit 7, and no further. Neither half may be a line feed
        // or zero.
        const auto others = ((pair ^ 0x000A'000Au) + 0x007F'007Fu) & (pair + 0x007F'007Fu) & 0x0080'0080u;
        if ((pair & 0xFF80'FF80u) != 0 || others != 0x0080'0080u)
            break;
        const auto both = static_cast<std::uint16_t>(pair | pair >> 8);
        std::memcpy(to + done, &both, sizeof(both));
    }
    for (; done < units && isPlain(from + 2 * done); ++done)
        to[done] = from[2 * done];
    return done;
}

void appendUtf16(std::string& text, std::string_view bytes)
{
    for (std::size_t position = 0; position + 1 < bytes.size(); position += 2) {
        auto unit = unitAt(bytes, position);
        if (isHighSurrogate(unit) && position + 3 < bytes.size() && isLowSurrogate(unitAt(bytes, position + 2))) {
            position += 2;
            unit = 0x10000 + ((unit - 0xD800) << 10) + (unitAt(bytes, position) - 0xDC00);
        } else if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
            unit = replacement;
        }
        // A machine that goes down may leave thousands of zeros for what was not written any more.
        if (unit == 0 && text.ends_with(replacementText))
            continue;
        if (unit != byteOrderMark)
            append(text, unit == 0 ? replacement : unit);
    }
}

/// How many bytes the character at the front of `bytes` has; 0 when they are none in UTF-8.
std::size_t utf8Length(std::string_view bytes)
{
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const auto first = byte(0);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    if (length > bytes.size())
        return 0;
    for (std::size_t index = 1; index < length; ++index)
        if ((byte(index) & 0xC0) != 0x80)
            return 0;
    // Overlong forms, surrogates and what lies beyond the last character.
    const bool inRange = length < 3 || (first == 0xE0      ? byte(1) >= 0xA0
                                           : first == 0xED ? byte(1) < 0xA0
                                           : first == 0xF0 ? byte(1) >= 0x90
                                           : first == 0xF4 ? byte(1) < 0x90
                                                           : true);
    return inRange ? length : 0;
}

void appendUtf8(std::string& text, std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto length = utf8Length(bytes);
        if (length == 0)
            append(text, replacement);
        else
            text += bytes.substr(0, length);
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
}

/// Whether a record's header "2026-" stands there in UTF-16.
bool isYearAt(std::string_view bytes, std::size_t start)
{
    const auto unit = [&](std::size_t index) { return unitAt(bytes, start + 2 * index); };
    const auto isDigit = [&](std::size_t index) { return unit(index) >= '0' && unit(index) <= '9'; };
    return start + 2 * 5 <= bytes.size() && isDigit(0) && isDigit(1) && isDigit(2) && isDigit(3) && unit(4) == '-';
}

/// Where a record's header begins at an odd place, behind one that was cut in the middle of a character.
std::size_t findShiftedRecord(std::string_view bytes)
{
    for (std::size_t start = 1; start < bytes.size(); start += 2)
        if (isYearAt(bytes, start))
            return start;
    return std::string_view::npos;
}

/// How many bytes of another program, which wrote no end of a line, stand before the record.
std::size_t foreignFront(std::string_view bytes, std::size_t zero)
{
    constexpr std::size_t markSize = 2;
    return zero > markSize + 1 && isYearAt(bytes, zero - 1) ? zero - 1 : 0;
}

/// Where in the line another record begins, as the one before it was cut short; 0 for nowhere.
std::size_t findNextRecord(std::string_view line)
{
    // The bracket is rare in a message.
    constexpr auto bracket = std::string_view("2026-11-22 10:00:00.000 ").size();
    for (auto place = line.find('[', bracket + 1); place != std::string_view::npos; place = line.find('[', place + 1))
        if (parseRecord(line.substr(place - bracket)))
            return place - bracket;
    return 0;
}

void giveRecords(std::string_view line, const LineSplitter::Sink& sink)
{
    while (const auto next = findNextRecord(line)) {
        sink(line.substr(0, next));
        line.remove_prefix(next);
    }
    sink(line);
}

/// The end of a line in UTF-16 whose bytes have slipped by one.
bool isShiftedEnd(std::string_view bytes, std::size_t feed)
{
    return feed % 2 == 1 && feed >= 2 && bytes[feed - 1] == '\0' && bytes[feed - 2] == '\r';
}

} // namespace

void LineSplitter::take(std::string_view bytes, const Sink& sink)
{
    completeRest(bytes, sink);
    m_plain.resize(std::max(m_plain.size(), bytes.size() / 2));
    std::size_t length = 0;
    while ((length = takePlainLine(bytes, sink)) > 0 || (length = takeLine(bytes, 0, sink)) > 0)
        bytes.remove_prefix(length);
    m_rest += bytes;
    if (m_rest.size() > longestLine)
        finish(sink);
}

/// Completes the line that was begun with the front of the bytes, which is taken off, so that what follows is read
/// where it lies. Nothing is left when that is not enough.
void LineSplitter::completeRest(std::string_view& bytes, const Sink& sink)
{
    while (!m_rest.empty() && !bytes.empty()) {
        // A line feed that came last is still to be judged, by the byte behind it.
        const auto judged = m_rest.size() - 1;
        const auto feed = bytes.find('\n');
        const auto size = feed == std::string_view::npos ? bytes.size() : std::min(feed + 2, bytes.size());
        m_rest += bytes.substr(0, size);
        bytes.remove_prefix(size);
        const auto length = takeLine(m_rest, judged, sink);
        if (length == 0)
            continue;
        const auto over = m_rest.size() - length;
        bytes = {bytes.data() - over, bytes.size() + over};
        m_rest.clear();
    }
}

void LineSplitter::finish(const Sink& sink)
{
    auto rest = std::exchange(m_rest, {});
    if (rest.ends_with('\n'))
        rest.pop_back();
    if (!rest.empty())
        give(rest, sink);
}

/// Takes the first line if it is ASCII in UTF-16, as nearly all of a log is; gives its length with the end, or 0.
std::size_t LineSplitter::takePlainLine(std::string_view bytes, const Sink& sink)
{
    const auto units = bytes.size() / 2;
    const auto size = copyPlain(bytes.data(), units, m_plain.data());
    if (size == units || bytes[2 * size] != '\n' || bytes[2 * size + 1] != '\0')
        return 0;
    giveRecords({m_plain.data(), size > 0 && m_plain[size - 1] == '\r' ? size - 1 : size}, sink);
    return 2 * (size + 1);
}

/// Takes the first line, whatever it is, looking for its end from a place on; gives its length with the end, 0 when it
/// isn't complete.
std::size_t LineSplitter::takeLine(std::string_view bytes, std::size_t from, const Sink& sink)
{
    bool isWide = false;
    for (auto feed = bytes.find('\n', from); feed != std::string_view::npos; feed = bytes.find('\n', feed + 1)) {
        // Without a zero byte so far it may be one of UTF-8, or the first half of a character's.
        if (feed + 1 == bytes.size())
            return 0;
        if (bytes[feed + 1] == '\0' && (feed % 2 == 0 || isShiftedEnd(bytes, feed))) {
            give(bytes.substr(0, feed), sink);
            return feed + 2;
        }
        isWide = isWide || bytes.substr(0, feed).find('\0') != std::string_view::npos;
        if (!isWide) {
            give(bytes.substr(0, feed), sink);
            return feed + 1;
        }
    }
    return 0;
}

void LineSplitter::give(std::string_view bytes, const Sink& sink)
{
    const auto zero = bytes.find('\0');
    if (zero == std::string_view::npos) {
        appendUtf8(m_line, bytes);
        return giveLine(sink);
    }
    if (const auto front = foreignFront(bytes, zero)) {
        give(bytes.substr(0, front), sink);
        bytes.remove_prefix(front);
    }
    const auto shifted = bytes.size() % 2 == 1 ? findShiftedRecord(bytes) : std::string_view::npos;
    appendUtf16(m_line, bytes.substr(0, shifted));
    giveLine(sink);
    if (shifted != std::string_view::npos) {
        appendUtf16(m_line, bytes.substr(shifted));
        giveLine(sink);
    }
}

void LineSplitter::giveLine(const Sink& sink)
{
    if (m_line.ends_with('\r'))
        m_line.pop_back();
    giveRecords(m_line, sink);
    m_line.clear();
}

} // namespace logreading
