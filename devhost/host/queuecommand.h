#pragma once

#include "host/context.h"
#include "host/exitcode.h"

#include <string>

// The commands on the deployment queue. Changes go the agent's way: through the store's client library, under the
// queue's mutex. All throw CommandError, or StoreException when the store is not there or refuses.
namespace devhost::host {

ExitCode showQueue(const Context& context);
/// Fails when the same text is queued already.
ExitCode pushToQueue(const Context& context, const std::string& descriptor);
/// Fails when the queue is empty.
ExitCode popQueue(const Context& context);
/// Fails when there is no such text in the queue.
ExitCode removeFromQueue(const Context& context, const std::string& descriptor);

} // namespace devhost::host
