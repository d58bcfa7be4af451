#pragma once

#include <cstdint>

namespace vx {

/// A point in time in the Gregorian calendar, years 1 to 9999, or NEVER. Immutable; any thread.
class DateTime {
public:
    /// What the parts are meant in; kept, and not converted.
    enum class Kind : std::int32_t { Utc = 0, System = 1, Local = 2 };

    /// As people write them: month and day begin at 1.
    struct Parts {
        unsigned year, month, day, hour, minute, second, millisecond;
    };

    /// Throws BaseException "Invalid value for " and the first part that is out of its range.
    explicit DateTime(const Parts& parts, Kind kind = Kind::Utc);
    /// Seconds since the Unix epoch, -1 for NEVER.
    static DateTime fromTime(std::int64_t time) noexcept;
    static DateTime now();
    static DateTime never() noexcept;
    /// The largest date in use.
    static const DateTime& largest();

    /// Units of 100 ns since 0001-01-01; all bits set for NEVER.
    std::uint64_t ticks() const noexcept { return m_ticks; }
    Kind kind() const noexcept { return m_kind; }
    /// -1: not used.
    std::int32_t offset() const noexcept { return m_offset; }
    bool isNever() const noexcept { return m_ticks == neverTicks; }
    /// Of the date as it is; meaningless for NEVER.
    Parts parts() const noexcept;

    /// Local times converted; all others as they are. Throws Win32Exception for a date before 1601.
    DateTime toUtc() const;

    /// Units of 100 ns between two points in UTC. Throws BaseException when one is NEVER.
    friend std::int64_t operator-(const DateTime& a, const DateTime& b);

private:
    static constexpr std::uint64_t neverTicks = ~std::uint64_t{0};

    DateTime(std::uint64_t ticks, Kind kind) noexcept : m_ticks(ticks), m_kind(kind) {}

    std::uint64_t m_ticks;
    Kind m_kind;
    std::int32_t m_offset = -1;
};

} // namespace vx
