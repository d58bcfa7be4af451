#pragma once

#include "tarnhd/startreasons/agentstartreason.h"

#include <memory>

namespace vx::tarn {

/// Why the agent is to be started, from the change that asks for it to the end of the agent. Held by shared pointer:
/// the action thread may outlive whoever made it. Any thread; nothing is locked during a call of the store.
class StartReasons {
public:
    /// What one start event begins, further attempts while another agent runs included. Destroyed when all of that is
    /// over, whatever came of it. One thread.
    class Round {
    public:
        virtual ~Round() = default;
        /// As the log names it.
        virtual AgentStartReason reason() const = 0;
        /// An agent has ended: acknowledges what the round answers, at each attempt. Throws what the store throws.
        virtual void close() = 0;
    };

    virtual ~StartReasons() = default;
    /// Goes with the next start event.
    virtual void set(AgentStartReason reason) = 0;
    /// What was set last and is not taken yet.
    virtual AgentStartReason get() const = 0;
    /// Begins a round with what was set.
    virtual std::unique_ptr<Round> take() = 0;
};

} // namespace vx::tarn
