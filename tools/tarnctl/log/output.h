#pragma once

#include "logreading/record.h"

#include <string_view>

namespace tarnctl::log {

/// One form in which a log is given out, line by line. One thread.
class Output {
public:
    virtual ~Output() = default;
    /// `record` is empty for a line that is none.
    virtual void line(std::string_view line, const logreading::Record* record) = 0;
    /// After the last line.
    virtual void end() {}
};

} // namespace tarnctl::log
