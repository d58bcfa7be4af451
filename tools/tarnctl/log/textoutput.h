#pragma once

#include "tarnctl/log/output.h"

#include <iosfwd>

namespace tarnctl::log {

/// The log's own lines, for people and for log viewers.
class TextOutput : public Output {
public:
    /// By the level, with the escape sequences of terminals.
    enum class Colours { None, ByLevel };

    /// The stream is borrowed.
    TextOutput(std::ostream& stream, Colours colours) : m_stream(stream), m_colours(colours) {}

    void line(std::string_view line, const logreading::Record* record) override;

private:
    std::ostream& m_stream;
    Colours m_colours;
};

/// One JSON object per line: the parts of a record, or {"line": ...} for a line that is none.
class JsonOutput : public Output {
public:
    /// The stream is borrowed.
    explicit JsonOutput(std::ostream& stream) : m_stream(stream) {}

    void line(std::string_view line, const logreading::Record* record) override;

private:
    std::ostream& m_stream;
};

} // namespace tarnctl::log
