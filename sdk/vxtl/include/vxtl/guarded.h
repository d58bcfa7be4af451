#pragma once

#include "vxtl/exception.h"

#include <string_view>
#include <utility>

namespace vx {

/// Calls the function and lets no exception out: what it throws is logged at error level as `message` and
/// the exception's text, or as the exception's trace when the message is empty. For the boundaries where
/// a failure ends: callbacks, thread bodies, one round of a loop. Answers whether nothing was thrown.
template <typename Function>
bool guarded(std::string_view message, Function&& function) noexcept
{
    try {
        std::forward<Function>(function)();
        return true;
    } catch (const std::exception& e) {
        if (message.empty())
            logging::LogStream(logging::Level::Error) << e;
        else
            logging::LogStream(logging::Level::Error) << message << e.what();
    } catch (...) {
        logging::LogStream(logging::Level::Error) << message << "Unknown exception";
    }
    return false;
}

} // namespace vx
