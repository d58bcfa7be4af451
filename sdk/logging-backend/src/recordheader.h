#pragma once

#include <cstddef>

namespace VxQrlLogging {

/// When a record came: the calendar's parts, in UTC or by the local clock.
struct RecordTime {
    unsigned year;
    unsigned month;
    unsigned day;
    unsigned hour;
    unsigned minute;
    unsigned second;
    unsigned millisecond;

    static RecordTime now(bool utc) noexcept;
};

/// Characters of a header with the blank behind it.
inline constexpr std::size_t headerSize = 40;

/// Writes "2024-01-31 23:59:59.999 [12ab.34cd] *E: " to the first headerSize characters of the record. The
/// header has this one width: false, and the record is to be dropped, when a number needs more digits.
bool formatHeader(wchar_t* record, const RecordTime& time, unsigned long processId, unsigned long threadId,
    const wchar_t* prefix) noexcept;

} // namespace VxQrlLogging
