#pragma once

namespace devhost::host {

/// A flag that threads wait for: set once, never cleared. Any thread.
class Signal {
public:
    Signal();
    ~Signal();
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    void set();
    bool isSet() const;
    /// Blocks until one of the two is set; false when the time was over first.
    bool waitOr(const Signal& other, unsigned long timeoutMs) const;
    /// Blocks; false when the time was over first.
    bool wait(unsigned long timeoutMs) const;
    /// Native manual-reset event; borrowed.
    void* handle() const { return m_event; }

private:
    void* m_event;
};

/// For a wait without an end.
inline constexpr unsigned long forever = 0xFFFFFFFF;

} // namespace devhost::host
