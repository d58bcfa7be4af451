#pragma once

#include "logging/logstream.h"

#include <exception>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vx {

namespace details {

/// For a catch block: the exception's trace, or behind a message its text.
void logCaught(logging::Level level) noexcept;
void logCaught(logging::Level level, std::string_view message) noexcept;
void logCaught(logging::Level level, std::wstring_view message) noexcept;

template <typename Function>
bool outcomeOf(Function&& function)
{
    if constexpr (std::is_same_v<std::invoke_result_t<Function>, bool>)
        return std::forward<Function>(function)();
    else
        std::forward<Function>(function)();
    return true;
}

} // namespace details

/// Calls the function and lets no exception out: what it throws is logged as `message` followed by the exception's
/// text. For the boundaries where a failure ends: callbacks, thread bodies, one round of a loop, operations whose
/// contract is a boolean and a log line. Answers false after an exception, else what the function answers, which is
/// true for one that answers nothing.
template <typename Message, typename Function>
bool guarded(logging::Level level, const Message& message, Function&& function) noexcept
{
    try {
        return details::outcomeOf(std::forward<Function>(function));
    } catch (...) {
        details::logCaught(level, message);
        return false;
    }
}

/// The same at error level.
template <typename Message, typename Function>
    requires(!std::is_same_v<Message, logging::Level>)
bool guarded(const Message& message, Function&& function) noexcept
{
    return guarded(logging::Level::Error, message, std::forward<Function>(function));
}

/// The same without a message: the exception's trace is logged.
template <typename Function>
bool guarded(logging::Level level, Function&& function) noexcept
{
    try {
        return details::outcomeOf(std::forward<Function>(function));
    } catch (...) {
        details::logCaught(level);
        return false;
    }
}

template <typename Function>
bool guarded(Function&& function) noexcept
{
    return guarded(logging::Level::Error, std::forward<Function>(function));
}

/// The same for exceptions of one kind; others pass to the caller.
template <typename Caught, typename Message, typename Function>
bool guardedAgainst(logging::Level level, const Message& message, Function&& function)
{
    try {
        return details::outcomeOf(std::forward<Function>(function));
    } catch (const Caught&) {
        details::logCaught(level, message);
        return false;
    }
}

template <typename Caught, typename Message, typename Function>
    requires(!std::is_same_v<Message, logging::Level>)
bool guardedAgainst(const Message& message, Function&& function)
{
    return guardedAgainst<Caught>(logging::Level::Error, message, std::forward<Function>(function));
}

template <typename Caught, typename Function>
bool guardedAgainst(logging::Level level, Function&& function)
{
    try {
        return details::outcomeOf(std::forward<Function>(function));
    } catch (const Caught&) {
        details::logCaught(level);
        return false;
    }
}

template <typename Caught, typename Function>
bool guardedAgainst(Function&& function)
{
    return guardedAgainst<Caught>(logging::Level::Error, std::forward<Function>(function));
}

} // namespace vx
