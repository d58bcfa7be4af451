#include "store/server/faultplan.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

namespace devhost::store {

void FaultPlan::apply(const nlohmann::json& request)
{
    const FaultState given = faultStateFromJson(request);
    const bool clear = request.value("clear", false);
    const std::lock_guard lock(m_mutex);
    if (clear)
        m_state = {};
    std::ranges::copy_if(
        given.faults, std::back_inserter(m_state.faults), [](const Fault& fault) { return fault.count > 0; });
    if (request.contains("delayMs"))
        m_state.delayMs = given.delayMs;
    if (request.contains("refuse"))
        m_state.refuse = given.refuse;
}

FaultState FaultPlan::state() const
{
    const std::lock_guard lock(m_mutex);
    return m_state;
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
