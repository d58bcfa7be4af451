#include "libraries/systemobjects/taskdefinition.h"

#include "libraries/systemobjects/actions.h"
#include "libraries/systemobjects/taskproperties.h"
#include "libraries/systemobjects/triggers.h"
#include "vxtl/scopeexit.h"

namespace devhost::systemobjects {

namespace {
/// The library's own objects answer for it, whoever wraps them.
constexpr GUID ownDefinition{0x6d1f2f0b, 0x58c4, 0x4c0e, {0x9a, 0x51, 0x0e, 0x7b, 0x1c, 0x33, 0x90, 0x52}};
} // namespace

std::optional<nlohmann::json> TaskDefinition::read(ITaskDefinition* definition)
{
    void* found = nullptr;
    if (!definition || FAILED(definition->QueryInterface(ownDefinition, &found)))
        return std::nullopt;
    const auto own = static_cast<TaskDefinition*>(found);
    const vx::ScopeExit release([own] { own->Release(); });
    return own->m_parts.whole();
}

HRESULT TaskDefinition::QueryInterface(REFIID iid, void** object)
{
    if (iid != ownDefinition)
        return DispatchObject::QueryInterface(iid, object);
    AddRef();
    *object = this;
    return S_OK;
}

HRESULT TaskDefinition::get_RegistrationInfo(IRegistrationInfo** info)
{
    return give<RegistrationInfo>("ITaskDefinition::get_RegistrationInfo", info, m_parts.registrationInfo);
}

HRESULT TaskDefinition::get_Triggers(ITriggerCollection** triggers)
{
    return give<TriggerCollection>("ITaskDefinition::get_Triggers", triggers, m_parts.triggers);
}

HRESULT TaskDefinition::get_Settings(ITaskSettings** settings)
{
    return give<TaskSettings>("ITaskDefinition::get_Settings", settings, m_parts.settings);
}

HRESULT TaskDefinition::get_Principal(IPrincipal** principal)
{
    return give<Principal>("ITaskDefinition::get_Principal", principal, m_parts.principal);
}

HRESULT TaskDefinition::get_Actions(IActionCollection** actions)
{
    return give<ActionCollection>("ITaskDefinition::get_Actions", actions, m_parts.actions);
}

} // namespace devhost::systemobjects
