#include "loggerwin.h"

#include "banner.h"
#include "logging/details/lasterror.h"
#include "messagebuffer.h"
#include "recordheader.h"

#include <limits>
#include <memory>
#include <windows.h>

namespace VxQrlLogging {

using vx::logging::details::LastErrorKeeper;

namespace {

constexpr int failureLevel = 2;
constexpr int deferredLevel = 6;

// What every entry does around its work: nothing may come out of a log call, an exception no more than
// a changed last error.
template <typename Work>
void entry(Work work) noexcept
{
    const LastErrorKeeper keeper;
    try {
        work();
    } catch (...) {
    }
}

std::wstring widen(const char* text)
{
    const int size = text ? MultiByteToWideChar(CP_UTF8, 0, text, -1, nullptr, 0) : 0;
    if (size <= 1)
        return {};
    std::wstring result(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text, -1, result.data(), size);
    result.pop_back();
    return result;
}

// UTF-8 to UTF-16 with room for as many units as bytes; 0 when the system can't. Plain ASCII, nearly every
// message, needs no system call.
int convert(const char* text, int size, wchar_t* target)
{
    unsigned char all = 0;
    for (int i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        all |= byte;
        target[i] = byte;
    }
    return all < 0x80 ? size : MultiByteToWideChar(CP_UTF8, 0, text, size, target, size);
}

std::wstring orEmpty(const wchar_t* text)
{
    return text ? text : L"";
}

} // namespace

LoggerWin::LoggerWin(std::atomic<int>* levelMirror) noexcept : m_levelMirror(levelMirror) {}

LoggerWin::~LoggerWin()
{
    entry([this] {
        LoggerWin::log(bannerLevel(m_flags), L"***  LOG AUTO-CLOSED ***");
        drop();
        // From here on no level passes, not even those below 1: nobody may reach this object any more.
        setLevel(std::numeric_limits<int>::min());
    });
}

void LoggerWin::open(const char* name1, const char* name2, int level, unsigned flags) noexcept
{
    entry([&] { openCore(widen(name1), widen(name2), level, flags); });
}

void LoggerWin::open(const wchar_t* name1, const wchar_t* name2, int level, unsigned flags) noexcept
{
    entry([&] { openCore(orEmpty(name1), orEmpty(name2), level, flags); });
}

void LoggerWin::openCore(const std::wstring& name1, const std::wstring& name2, int level, unsigned flags)
{
    Lock lock(m_lock);
    if (m_context)
        return;
    m_flags = flags;
    m_context = createContext(name1, name2, flags);
    if (flags & LOG_FLAG_DEFERRED) {
        setLevel(deferredLevel);
        m_debugOutput = false;
        return;
    }
    setLevel(level);
    initialise(lock);
}

std::unique_ptr<FileContext> LoggerWin::createContext(
    const std::wstring& name1, const std::wstring& name2, unsigned flags)
{
    return std::make_unique<FileContext>(name1, name2, flags, std::make_unique<FileSystem::Path>());
}

bool LoggerWin::initialise(Lock& lock)
{
    if (!m_context->open())
        return false;
    m_debugOutput = m_context->debugOutputEnabled();
    setLevel(m_context->logLevel(m_level));
    // The banner goes the way of any message, which takes the lock itself.
    lock.unlock();
    writeStartBanner();
    lock.lock();
    return true;
}

void LoggerWin::writeStartBanner()
{
    const unsigned flags = m_flags;
    const int level = bannerLevel(flags);
    if (isFiltered(level))
        return;
    writeText(level, L"\r\n");
    const bool utc = (flags & LOG_FLAG_UTC) != 0;
    LoggerWin::log(level, L"%s", startBanner(utc, utcOffset(), session()).c_str());
}

void LoggerWin::close() noexcept
{
    entry([this] {
        LoggerWin::log(bannerLevel(m_flags), L"***  LOGGING ENDED  ***");
        drop();
    });
}

void LoggerWin::drop() noexcept
{
    const Lock lock(m_lock);
    m_context.reset();
    setLevel(0);
}

void LoggerWin::flush() noexcept
{
    entry([this] {
        const Lock lock(m_lock);
        if (m_context)
            m_context->flush();
    });
}

template <typename Fill>
void LoggerWin::logNarrow(int level, const char* format, const Fill& fill)
{
    const RecordTime time = RecordTime::now((m_flags & LOG_FLAG_UTC) != 0);
    MessageBuffer<char, 0> message;
    if (!fill(message)) {
        log(failureLevel, L"VX_QRL_LOG failure: too large message. Format: %S", format);
        return;
    }
    // UTF-8 never has fewer bytes than UTF-16 has units, so the message's size is room enough.
    wchar_t small[headerSize + smallBufferSize + 1];
    std::unique_ptr<wchar_t[]> large;
    if (message.size() > smallBufferSize)
        large.reset(new wchar_t[headerSize + message.size() + 1]);
    wchar_t* record = large ? large.get() : small;
    const int length = convert(message.data(), static_cast<int>(message.size()), record + headerSize);
    if (length <= 0) {
        log(failureLevel, L"VX_QRL_LOG failure: unable to convert ANSI to UNICODE. Format: %S", format);
        return;
    }
    const std::size_t size = headerSize + static_cast<std::size_t>(length);
    record[size] = L'\0';
    writeRecord(level, time, record, size);
}

void LoggerWin::vlog(int level, const wchar_t* format, std::va_list arguments) noexcept
{
    if (!isFiltered(level))
        entry([&] { logWide(level, format, arguments); });
}

void LoggerWin::vlog(int level, const char* format, std::va_list arguments) noexcept
{
    if (!isFiltered(level))
        entry([&] { logNarrow(level, format, [&](auto& message) { return message.format(format, arguments); }); });
}

// Past the system's printf, which is a good part of a short record's cost.
void LoggerWin::write(int level, std::string_view first, std::string_view second) noexcept
{
    if (!isFiltered(level))
        entry([&] { logNarrow(level, "%s%s", [&](auto& message) { return message.join(first, second); }); });
}

void LoggerWin::logWide(int level, const wchar_t* format, std::va_list arguments)
{
    // Before the formatting: the record tells when the message came, not when it was ready.
    const RecordTime time = RecordTime::now((m_flags & LOG_FLAG_UTC) != 0);
    MessageBuffer<wchar_t, headerSize> record;
    if (record.format(format, arguments))
        writeRecord(level, time, record.data(), record.size());
    else
        log(failureLevel, L"VX_QRL_LOG failure: too large message. Format: %s", format);
}

void LoggerWin::writeRecord(int level, const RecordTime& time, wchar_t* record, std::size_t size)
{
    if (!formatHeader(record, time, GetCurrentProcessId(), GetCurrentThreadId(), levelPrefix(level)))
        return;
    if (m_debugOutput)
        OutputDebugStringW(record);
    writeText(level, {record, size});
}

void LoggerWin::writeText(int level, std::wstring_view text)
{
    Lock lock(m_lock);
    if (!m_context)
        return;
    const bool initialised = initialise(lock);
    // The lock was free for a while: another thread may have closed, or the configuration filters this one.
    if (initialised && (!m_context || isFiltered(level)))
        return;
    m_context->write(text);
}

void LoggerWin::setLevel(int level) noexcept
{
    m_level.store(level, std::memory_order_relaxed);
    if (m_levelMirror)
        m_levelMirror->store(level, std::memory_order_relaxed);
}

} // namespace VxQrlLogging
