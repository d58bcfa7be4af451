#include "store/protocol/fault.h"

#include <nlohmann/json.hpp>

namespace devhost::store {

namespace {

nlohmann::json faultToJson(const Fault& fault)
{
    return {{"operation", vx::toText(fault.operation)}, {"code", static_cast<int>(fault.code)}, {"count", fault.count},
        {"name", fault.name}};
}

Fault faultFromJson(const nlohmann::json& json)
{
    const int code = json.value("code", 1);
    if (code == 0)
        throw StoreException(ErrorCode::InvalidParameter, "fault", "the code 0 is no failure");
    return {parseOperation(json.value("operation", "all")), static_cast<ErrorCode>(code), json.value("count", 1U),
        json.value("name", std::string())};
}

} // namespace

Operation parseOperation(std::string_view name)
{
    if (const auto operation = vx::findText<Operation>(name))
        return *operation;
    throw StoreException(ErrorCode::InvalidParameter, "'" + std::string(name) + "'",
        "not an operation (get, set, subscribe, unsubscribe, open, all)");
}

nlohmann::json toJson(const FaultState& state)
{
    nlohmann::json faults = nlohmann::json::array();
    for (const Fault& fault : state.faults)
        faults.push_back(faultToJson(fault));
    return {{"faults", faults}, {"refuse", state.refuse}, {"delayMs", state.delayMs}};
}

FaultState faultStateFromJson(const nlohmann::json& json)
{
    try {
        FaultState state;
        for (const nlohmann::json& fault : json.value("faults", nlohmann::json::array()))
            state.faults.push_back(faultFromJson(fault));
        state.refuse = json.value("refuse", false);
        state.delayMs = json.value("delayMs", 0U);
        return state;
    } catch (const nlohmann::json::exception& exception) {
        throw StoreException(ErrorCode::InvalidParameter, "fault plan", exception.what());
    }
}

} // namespace devhost::store
