#pragma once

#include <string>

namespace devhost::host {

/// Held by the one host of an instance. The constructor throws CommandError, AlreadyRunning, when another
/// process holds it.
class InstanceLock {
public:
    explicit InstanceLock(const std::wstring& instance);
    ~InstanceLock();
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

private:
    void* m_mutex;
};

/// Tells other programs that the host of an instance is up. Either side may come first.
class ReadySignal {
public:
    explicit ReadySignal(const std::wstring& instance);
    ~ReadySignal();
    ReadySignal(const ReadySignal&) = delete;
    ReadySignal& operator=(const ReadySignal&) = delete;

    void set();
    void reset();
    /// Blocks; false when the time was over first.
    bool wait(unsigned long timeoutMs) const;

private:
    void* m_event;
};

/// Lets the store's client library, in this process and its children, work with the instance.
void exportInstance(const std::wstring& instance);

} // namespace devhost::host
