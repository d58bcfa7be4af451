#include "vxtl/guarded.h"

#include "vxtl/exception.h"

namespace vx::details {

using logging::Level;
using logging::LogStream;

namespace {

template <typename Message>
void logTextBehind(Level level, const Message& message) noexcept
{
    try {
        throw;
    } catch (const std::exception& e) {
        LogStream(level) << message << What(e);
    } catch (...) {
        LogStream(level) << message << "Unknown exception";
    }
}

} // namespace

void logCaught(Level level, std::string_view message) noexcept
{
    logTextBehind(level, message);
}

void logCaught(Level level, std::wstring_view message) noexcept
{
    logTextBehind(level, message);
}

void logCaught(Level level) noexcept
{
    try {
        throw;
    } catch (const std::exception& e) {
        LogStream(level) << e;
    } catch (...) {
        LogStream(level) << "Unknown exception";
    }
}

} // namespace vx::details
