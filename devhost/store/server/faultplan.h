#pragma once

#include "store/protocol/fault.h"

#include <mutex>
#include <optional>

namespace devhost::store {

/// The faults that are planned now. Any thread.
class FaultPlan {
public:
    void add(const Fault& fault);
    void clear();
    void setRefuse(bool refuse);
    void setDelay(unsigned milliseconds);
    FaultState state() const;

    bool refuses() const;
    unsigned delayMs() const;
    /// Uses up one count of the earliest fault that matches, if any. `name` is empty for an open.
    std::optional<ErrorCode> take(Operation operation, const std::string& name);

private:
    mutable std::mutex m_mutex;
    FaultState m_state; ///< guarded by m_mutex
};

} // namespace devhost::store
