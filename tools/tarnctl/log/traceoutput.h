#pragma once

#include "logreading/story.h"
#include "tarnctl/log/blockwriter.h"
#include "tarnctl/log/output.h"

#include <map>

namespace tarnctl::log {

/// Trace Event JSON, for the viewers of that format: scopes as slices on a track per thread, warnings and errors as
/// instants, and agent starts and what asked for them on tracks of their own.
class TraceOutput : public Output {
public:
    /// The stream is borrowed.
    explicit TraceOutput(std::ostream& stream);

    void line(std::string_view line, const logreading::Record* record) override;
    void flush() override { m_writer.flush(); }
    void end() override;

private:
    void scope(const logreading::Record& record);
    void agentStart(const logreading::AgentStart& start);

    BlockWriter m_writer;
    logreading::Story m_story;
    std::map<std::pair<std::uint16_t, std::uint16_t>, unsigned> m_openScopes; ///< by process and thread
    bool m_first = true;

    template <typename Object>
    void event(const Object& object);
};

} // namespace tarnctl::log
