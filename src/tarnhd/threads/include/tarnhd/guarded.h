#pragma once

#include "logging/logstream.h"

#include <exception>
#include <string_view>
#include <utility>

namespace vx::tarn {

/// Runs one step of a loop or thread. A std::exception that the step lets out becomes one log line at error
/// level, `message` followed by the exception's text, and the caller goes on.
template <typename Step>
void guarded(std::string_view message, Step&& step)
{
    try {
        std::forward<Step>(step)();
    } catch (const std::exception& e) {
        logging::LogStream(logging::Level::Error) << message << e.what();
    }
}

} // namespace vx::tarn
