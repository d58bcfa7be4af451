#include "libraries/systemobjects/definitionparts.h"

#include "libraries/systemobjects/interfacenames.h"
#include "machine/boundary.h"

#include <algorithm>

namespace devhost::systemobjects {

namespace {

using nlohmann::json;

constexpr HRESULT invalidValue = static_cast<HRESULT>(0x80041318); // SCHED_E_INVALIDVALUE
constexpr HRESULT missingNode = static_cast<HRESULT>(0x80041319);  // SCHED_E_MISSINGNODE

const json& usualSettings()
{
    static const json settings{{"AllowDemandStart", true}, {"AllowHardTerminate", true}, {"Compatibility", 2},
        {"DisallowStartIfOnBatteries", true}, {"Enabled", true}, {"ExecutionTimeLimit", "PT72H"},
        {"MultipleInstances", TASK_INSTANCES_IGNORE_NEW}, {"Priority", 7}, {"StopIfGoingOnBatteries", true}};
    return settings;
}

Values partOf(const json& definition, const char* name)
{
    return std::make_shared<json>(definition.value(name, json::object()));
}

ValuesList listOf(const json& definition, const char* name)
{
    const auto list = std::make_shared<ValuesList::element_type>();
    for (const auto& item : definition.value(name, json::array()))
        list->push_back(std::make_shared<json>(item));
    return list;
}

json jsonOf(const ValuesList& list)
{
    auto array = json::array();
    for (const auto& item : *list)
        array.push_back(*item);
    return array;
}

bool isWithin(const json& values, const char* name, int lowest, int highest)
{
    const auto number = values.value(name, lowest);
    return number >= lowest && number <= highest;
}

HRESULT checkTrigger(const json& trigger)
{
    const auto startText = trigger.value("StartBoundary", ""), endText = trigger.value("EndBoundary", "");
    if (startText.empty())
        return missingNode;
    const auto start = machine::parseBoundary(startText);
    const auto end = endText.empty() ? start : machine::parseBoundary(endText);
    if (!start || !end || *end < *start)
        return invalidValue;
    const bool isDaily = trigger.at("Type") == TASK_TRIGGER_DAILY;
    const bool fits = isDaily ? isWithin(trigger, "DaysInterval", 1, 365)
                              : isWithin(trigger, "WeeksInterval", 1, 52) && isWithin(trigger, "DaysOfWeek", 1, 127);
    return fits ? S_OK : invalidValue;
}

HRESULT checkAction(const json& action)
{
    return action.value("Path", "").empty() ? missingNode : S_OK;
}

/// The first fault of any.
HRESULT checkAll(const json& items, HRESULT (*check)(const json& item))
{
    for (const auto& item : items)
        if (const auto result = check(item); FAILED(result))
            return result;
    return S_OK;
}

} // namespace

DefinitionParts::DefinitionParts() : DefinitionParts(json{{"Settings", usualSettings()}}) {}

DefinitionParts::DefinitionParts(const json& definition)
    : registrationInfo(partOf(definition, "RegistrationInfo")), principal(partOf(definition, "Principal")),
      settings(partOf(definition, "Settings")), triggers(listOf(definition, "Triggers")),
      actions(listOf(definition, "Actions")), data(std::make_shared<json>(json::object()))
{
    if (definition.contains("Data"))
        (*data)["Data"] = definition.at("Data");
}

json DefinitionParts::whole() const
{
    return {{"RegistrationInfo", *registrationInfo}, {"Principal", *principal}, {"Settings", *settings},
        {"Triggers", jsonOf(triggers)}, {"Actions", jsonOf(actions)}, {"Data", data->value("Data", "")}};
}

HRESULT checkDefinition(const json& definition)
{
    if (definition.at("Actions").empty())
        return missingNode;
    const auto triggers = checkAll(definition.at("Triggers"), checkTrigger);
    return FAILED(triggers) ? triggers : checkAll(definition.at("Actions"), checkAction);
}

} // namespace devhost::systemobjects
