#include "store/server/faultplan.h"

#include <algorithm>

namespace devhost::store {

void FaultPlan::add(const Fault& fault)
{
    const std::lock_guard lock(m_mutex);
    if (fault.count > 0)
        m_state.faults.push_back(fault);
}

void FaultPlan::clear()
{
    const std::lock_guard lock(m_mutex);
    m_state = {};
}

void FaultPlan::setRefuse(bool refuse)
{
    const std::lock_guard lock(m_mutex);
    m_state.refuse = refuse;
}

void FaultPlan::setDelay(unsigned milliseconds)
{
    const std::lock_guard lock(m_mutex);
    m_state.delayMs = milliseconds;
}

FaultState FaultPlan::state() const
{
    const std::lock_guard lock(m_mutex);
    return m_state;
}

bool FaultPlan::refuses() const
{
    const std::lock_guard lock(m_mutex);
    return m_state.refuse;
}

unsigned FaultPlan::delayMs() const
{
    const std::lock_guard lock(m_mutex);
    return m_state.delayMs;
}

std::optional<ErrorCode> FaultPlan::take(Operation operation, const std::string& name)
{
    const std::lock_guard lock(m_mutex);
    const auto found = std::ranges::find_if(m_state.faults, [&](const Fault& fault) {
        return (fault.operation == Operation::All || fault.operation == operation) &&
               (fault.name.empty() || fault.name == name);
    });
    if (found == m_state.faults.end())
        return std::nullopt;
    const ErrorCode code = found->code;
    if (--found->count == 0)
        m_state.faults.erase(found);
    return code;
}

} // namespace devhost::store
