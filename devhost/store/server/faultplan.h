#pragma once

#include "store/protocol/fault.h"

#include <mutex>
#include <optional>

namespace devhost::store {

/// The faults that are planned now. Any thread.
class FaultPlan {
public:
    /// Takes over the members that are there, of those that faultStateFromJson reads: faults come to the planned
    /// ones, which "clear": true forgets before, with refusal and delay. Throws StoreException and the JSON
    /// library's errors.
    void apply(const nlohmann::json& request);
    FaultState state() const;
    /// Uses up one count of the earliest fault that matches, if any. `name` is empty for an open.
    std::optional<ErrorCode> take(Operation operation, const std::string& name);

private:
    mutable std::mutex m_mutex;
    FaultState m_state; ///< guarded by m_mutex
};

} // namespace devhost::store
