#pragma once

#include "vxtl/exception.h"

#include <utility>

namespace vx {

/// Calls the function and lets no exception out: what it throws is logged at error level as `message` followed by
/// the exception's text. For the boundaries where a failure ends: callbacks, thread bodies, one round of a loop.
/// Answers whether nothing was thrown.
template <typename Message, typename Function>
bool guarded(const Message& message, Function&& function) noexcept
{
    try {
        std::forward<Function>(function)();
        return true;
    } catch (const std::exception& e) {
        logging::LogStream(logging::Level::Error) << message << What(e);
    } catch (...) {
        logging::LogStream(logging::Level::Error) << message << "Unknown exception";
    }
    return false;
}

/// The same without a message: the exception's trace is logged.
template <typename Function>
bool guarded(Function&& function) noexcept
{
    try {
        std::forward<Function>(function)();
        return true;
    } catch (const std::exception& e) {
        logging::LogStream(logging::Level::Error) << e;
    } catch (...) {
        logging::LogStream(logging::Level::Error) << "Unknown exception";
    }
    return false;
}

} // namespace vx
