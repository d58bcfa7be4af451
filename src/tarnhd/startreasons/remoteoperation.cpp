#include "tarnhd/startreasons/remoteoperation.h"

#include "logging/logstream.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

std::int64_t startOf(const RemoteOperationsSettings& operations, AgentStartReason reason)
{
    switch (reason) {
    case AgentStartReason::RemoteScan: return operations.scanForUpdates.start();
    case AgentStartReason::RemoteDeployment: return operations.installUpdates.start();
    case AgentStartReason::None: break;
    }
    return 0;
}

std::int64_t ackOf(const RemoteOperationsSettings& operations, AgentStartReason reason)
{
    switch (reason) {
    case AgentStartReason::RemoteScan: return operations.scanForUpdates.ack();
    case AgentStartReason::RemoteDeployment: return operations.installUpdates.ack();
    case AgentStartReason::None: break;
    }
    return 0;
}

void acknowledge(const RemoteOperationsSettings& operations, AgentStartReason reason, std::int64_t start)
{
    if (reason == AgentStartReason::RemoteDeployment) {
        operations.installUpdates.ack.set(start);
        LogStream(Level::Info) << "Update a deployment remote operation status: " << start;
    } else if (reason == AgentStartReason::RemoteScan) {
        operations.scanForUpdates.ack.set(start);
        LogStream(Level::Info) << "Update a scanning remote operation status: " << start;
    }
}

void sayThatNoneIsClosed()
{
    LogStream(Level::Info) << "There was no remote operation for tarnag, nothing to update";
}

} // namespace vx::tarn
