#pragma once

#include "host/context.h"
#include "store/client/client.h"

#include <chrono>
#include <cstdint>
#include <string_view>

namespace devhost::host {

/// A request by a pair of counters: one more in `start` opens it, and it is closed when `ack` equals
/// `start`. One thread.
class RemoteOperation {
public:
    enum class Outcome { Acknowledged, TimedOut, Stopped };

    RemoteOperation(const Context& context, std::string_view startKey, std::string_view ackKey);

    /// Opens a request and gives its number. Throws StoreException.
    std::int64_t open();
    /// Opens a request and waits until it is closed, by the store's notifications; shows the status values
    /// that change meanwhile.
    Outcome openAndWait(std::chrono::seconds timeout);

private:
    std::int64_t next();
    void send(std::int64_t number);
    std::int64_t counter(const std::string& key);

    const Context& m_context;
    std::string m_startKey;
    std::string m_ackKey;
    store::Client m_values;
};

} // namespace devhost::host
