#pragma once

#include "tarnctl/log/blockwriter.h"
#include "tarnctl/log/output.h"

namespace tarnctl::log {

/// The log's own lines, for people and for log viewers.
class TextOutput : public Output {
public:
    /// By the level, with the escape sequences of terminals.
    enum class Colours { None, ByLevel };

    /// The stream is borrowed.
    TextOutput(std::ostream& stream, Colours colours) : m_writer(stream), m_colours(colours) {}

    bool needsRecords() const override { return m_colours != Colours::None; }
    void line(std::string_view line, const logreading::Record* record) override;
    void flush() override { m_writer.flush(); }

private:
    BlockWriter m_writer;
    Colours m_colours;
};

/// One JSON object per line: the parts of a record, or {"line": ...} for a line that is none.
class JsonOutput : public Output {
public:
    /// The stream is borrowed.
    explicit JsonOutput(std::ostream& stream) : m_writer(stream) {}

    void line(std::string_view line, const logreading::Record* record) override;
    void flush() override { m_writer.flush(); }

private:
    BlockWriter m_writer;
};

} // namespace tarnctl::log
