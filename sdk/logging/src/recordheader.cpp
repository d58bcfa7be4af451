#include "logging/details/recordheader.h"

#include <algorithm>
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

} // namespace

RecordTime RecordTime::now(bool utc) noexcept
{
    SYSTEMTIME time;
    if (utc)
        GetSystemTime(&time);
    else
        GetLocalTime(&time);
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
