#pragma once

namespace vx::tarn {

/// What recovery asks of the plug-in. Any thread.
class RecoveryDriver {
public:
    virtual ~RecoveryDriver() = default;
    /// Has the list of patches published anew, on another thread.
    virtual void publish() = 0;
    /// Asks for an agent start. Throws what the launcher throws.
    virtual void startAgent() = 0;
    /// Whether such a start would be taken up at all.
    virtual bool isAgentStartTaken() const = 0;
    /// Touches each access to the store, so that its cache writes what it has kept. A failure is logged.
    virtual void writeKeptValues() = 0;
};

} // namespace vx::tarn
