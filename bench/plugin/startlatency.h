#pragma once

/// Rows of the time from the set start event to the agent's process being made, beside the
/// bare wake-up of a waiting thread, which tells how busy the machine is. The log is open and the registry
/// names the agent's folder. True when the reach is met.
bool measureStartLatency();
