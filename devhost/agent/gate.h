#pragma once

#include <string>

namespace devhost::agent {

/// Two named events by which somebody else holds a run. Empty names are no events.
struct Gate {
    std::string startedEvent; ///< set when the gate is reached
    std::string waitForEvent; ///< then waited for without a limit
};

/// A manual-reset event of the system; made when it does not exist yet, so that neither side has to come first.
class NamedEvent {
public:
    explicit NamedEvent(const std::string& name);
    ~NamedEvent();
    NamedEvent(const NamedEvent&) = delete;
    NamedEvent& operator=(const NamedEvent&) = delete;

    void set();
    void wait();

private:
    void* m_handle;
};

/// Throws std::runtime_error when an event cannot be made.
void pass(const Gate& gate);

} // namespace devhost::agent
