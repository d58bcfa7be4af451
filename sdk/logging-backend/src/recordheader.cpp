#include "recordheader.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <windows.h>

namespace VxQrlLogging {

namespace {

// Formats by hand: printf would cost a tenth of the whole record. The layout is
// "%04d-%02d-%02d %02d:%02d:%02d.%03d [%04x.%04x] %s:".
class HeaderWriter {
public:
    HeaderWriter& number(unsigned long value, int width, unsigned base = 10)
    {
        wchar_t digits[10];
        int count = 0;
        for (; count < width || value != 0; value /= base)
            digits[count++] = L"0123456789abcdef"[value % base];
        m_end = std::reverse_copy(digits, digits + count, m_end);
        return *this;
    }

    HeaderWriter& character(wchar_t c)
    {
        *m_end++ = c;
        return *this;
    }

    std::size_t size() const { return static_cast<std::size_t>(m_end - m_text); }
    const wchar_t* text() const { return m_text; }

private:
    // Room for seven numbers of ten digits, two of eight and what stands between.
    wchar_t m_text[112];
    wchar_t* m_end = m_text;
};

constexpr std::uint64_t ticksPerSecond = 10'000'000;

// Seconds that local time is ahead of UTC. The system's conversion costs more than all the formatting, so
// its answer serves for the rest of the second: the second in the upper half, the answer in the lower.
std::int32_t localOffset(std::uint64_t utc) noexcept
{
    static std::atomic<std::uint64_t> known{0};
    const auto second = static_cast<std::uint32_t>(utc / ticksPerSecond);
    const std::uint64_t found = known.load(std::memory_order_relaxed);
    if (found >> 32 == second)
        return static_cast<std::int32_t>(found);
    const auto utcTime = std::bit_cast<FILETIME>(utc);
    FILETIME localTime = utcTime;
    FileTimeToLocalFileTime(&utcTime, &localTime);
    const auto ahead = static_cast<std::int64_t>(std::bit_cast<std::uint64_t>(localTime) - utc);
    const auto offset = static_cast<std::int32_t>(ahead / static_cast<std::int64_t>(ticksPerSecond));
    known.store(std::uint64_t{second} << 32 | static_cast<std::uint32_t>(offset), std::memory_order_relaxed);
    return offset;
}

SYSTEMTIME localTime() noexcept
{
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const auto utc = std::bit_cast<std::uint64_t>(now);
    const std::uint64_t ahead = static_cast<std::uint64_t>(std::int64_t{localOffset(utc)}) * ticksPerSecond;
    now = std::bit_cast<FILETIME>(utc + ahead);
    SYSTEMTIME time{};
    FileTimeToSystemTime(&now, &time);
    return time;
}

} // namespace

RecordTime RecordTime::now(bool utc) noexcept
{
    SYSTEMTIME time;
    if (utc)
        GetSystemTime(&time);
    else
        time = localTime();
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond, time.wMilliseconds};
}

bool formatHeader(wchar_t* record, const RecordTime& time, unsigned long processId, unsigned long threadId,
    const wchar_t* prefix) noexcept
{
    HeaderWriter header;
    header.number(time.year, 4).character(L'-').number(time.month, 2).character(L'-').number(time.day, 2);
    header.character(L' ').number(time.hour, 2).character(L':').number(time.minute, 2).character(L':');
    header.number(time.second, 2).character(L'.').number(time.millisecond, 3).character(L' ').character(L'[');
    header.number(processId, 4, 16).character(L'.').number(threadId, 4, 16).character(L']').character(L' ');
    for (int i = 0; i < 4 && prefix[i] != L'\0'; ++i)
        header.character(prefix[i]);
    header.character(L':');
    if (header.size() != headerSize - 1)
        return false;
    std::copy_n(header.text(), headerSize - 1, record);
    record[headerSize - 1] = L' ';
    return true;
}

} // namespace VxQrlLogging
