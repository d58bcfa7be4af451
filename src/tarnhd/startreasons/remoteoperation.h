#pragma once

#include "common/settings/remoteoperationssettings.h"
#include "tarnhd/startreasons/agentstartreason.h"

#include <cstdint>

namespace vx::tarn {

/// The counters of the operation that a reason stands for; no reason stands for none and reads as 0. They throw what
/// the store throws.
std::int64_t startOf(const RemoteOperationsSettings& operations, AgentStartReason reason);
std::int64_t ackOf(const RemoteOperationsSettings& operations, AgentStartReason reason);
/// Writes `start` to the operation's ack and says so in the log.
void acknowledge(const RemoteOperationsSettings& operations, AgentStartReason reason, std::int64_t start);
/// What the log says of a run that nobody's request has caused.
void sayThatNoneIsClosed();

} // namespace vx::tarn
