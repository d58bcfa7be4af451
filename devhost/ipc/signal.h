#pragma once

#include "vxtl/handle.h"

#include <string>

namespace devhost::ipc {

/// For a wait without an end.
inline constexpr unsigned long forever = 0xFFFFFFFF;

/// A flag that threads wait for, and processes when it has a name. Any thread.
class Signal {
public:
    /// Not set. A name shares the flag with all that use the same one, as it is by now: either side may come
    /// first, and it lasts until the last of them goes. Throws std::runtime_error.
    explicit Signal(const std::wstring& name = {});
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    void set() const;
    void reset() const;
    bool isSet() const;
    /// Blocks until one of the two is set; false when the time was over first.
    bool waitOr(const Signal& other, unsigned long timeoutMs) const;
    /// Blocks; false when the time was over first.
    bool wait(unsigned long timeoutMs) const;
    /// Native manual-reset event; borrowed.
    void* handle() const { return m_event.get(); }

private:
    vx::KernelHandle m_event;
};

} // namespace devhost::ipc
