#pragma once

#include <string>

namespace vx::tarn::common {

/// First-in first-out list of operation descriptors that survives restarts and is shared by plug-in and
/// agent. Any thread of any process. Failures are log lines: what is read is then empty.
class IDeploymentQueue {
public:
    virtual ~IDeploymentQueue() = default;
    /// True also when the list can't be read.
    virtual bool isEmpty() = 0;
    /// Appends a descriptor unless the same text is queued already. Throws what a malformed list throws
    /// (std::invalid_argument, the JSON library's errors); the item is lost then. Throws
    /// sync::StoppedException when the program is stopped while another one holds the queue.
    virtual void pushBack(const std::wstring& updateId) = 0;
    /// The oldest descriptor; empty when there is none or it can't be read.
    virtual std::wstring getFront() = 0;
    /// Drops the oldest descriptor.
    virtual void pop() = 0;
    /// True when an element with exactly this text was removed.
    virtual bool remove(const std::wstring& updateId) = 0;
};

} // namespace vx::tarn::common
