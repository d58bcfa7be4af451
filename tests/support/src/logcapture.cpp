#include "support/logcapture.h"

#include "logging/backend.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace VxQrlLogging {

std::atomic<int> details::processLevel{0};

namespace {
std::mutex mutex;
std::condition_variable added;
std::vector<support::LogCapture::Line> captured;

std::size_t countIn(const std::vector<support::LogCapture::Line>& lines, const std::string& text)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(lines, [&](const auto& line) { return line.text.find(text) != std::string::npos; }));
}
} // namespace

void log(int level, const char* format, ...) noexcept
{
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list copy;
    va_copy(copy, arguments);
    std::string text(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, copy)), '\0');
    va_end(copy);
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    va_end(arguments);
    write(level, text, {});
}

void write(int level, std::string_view first, std::string_view second) noexcept
{
    const std::lock_guard lock(mutex);
    captured.push_back({level, std::string(first).append(second)});
    added.notify_all();
}

} // namespace VxQrlLogging

namespace support {

using namespace VxQrlLogging;

LogCapture::LogCapture(int level)
{
    const std::lock_guard lock(mutex);
    captured.clear();
    details::processLevel = level;
}

LogCapture::~LogCapture()
{
    details::processLevel = 0;
}

std::vector<LogCapture::Line> LogCapture::lines() const
{
    const std::lock_guard lock(mutex);
    return captured;
}

std::string LogCapture::text() const
{
    std::string all;
    for (const Line& line : lines())
        all += line.text + '\n';
    return all;
}

bool LogCapture::has(int level, const std::string& text) const
{
    return std::ranges::any_of(
        lines(), [&](const Line& line) { return line.level == level && line.text.find(text) != std::string::npos; });
}

std::size_t LogCapture::count(const std::string& text) const
{
    return countIn(lines(), text);
}

bool LogCapture::waitFor(const std::string& text, std::size_t times) const
{
    std::unique_lock lock(mutex);
    return added.wait_for(lock, std::chrono::seconds(60), [&] { return countIn(captured, text) >= times; });
}

} // namespace support
