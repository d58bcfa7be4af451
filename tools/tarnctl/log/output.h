#pragma once

#include "logreading/record.h"

#include <string_view>

namespace tarnctl::log {

/// One form in which a log is given out, line by line. One thread.
class Output {
public:
    virtual ~Output() = default;
    /// Whether it looks at records; otherwise it may be given none with any line.
    virtual bool needsRecords() const { return true; }
    /// `record` is empty for a line that is none.
    virtual void line(std::string_view line, const logreading::Record* record) = 0;
    /// Hands on what is held back to be written in larger pieces.
    virtual void flush() = 0;
    /// After the last line; everything is handed on.
    virtual void end() { flush(); }
};

} // namespace tarnctl::log
