#include "libraries/systemobjects/grouppolicyobject.h"

#include "libraries/systemobjects/guidtext.h"
#include "machine/machinefile.h"
#include "vxtl/str.h"

namespace devhost::systemobjects {

namespace {

constexpr std::size_t mostSaves = 100;

void keep(machine::MachineState& state, machine::PolicySave save)
{
    auto& saves = state.policySaves;
    saves.push_back(std::move(save));
    if (saves.size() > mostSaves)
        saves.erase(saves.begin());
}

} // namespace

HRESULT GroupPolicyObject::OpenLocalMachineGPO(DWORD flags)
{
    return answer("IGroupPolicyObject::OpenLocalMachineGPO", [&] {
        if (flags & ~static_cast<DWORD>(GPO_OPEN_LOAD_REGISTRY | GPO_OPEN_READ_ONLY))
            return E_INVALIDARG;
        m_openedWith = flags;
        return S_OK;
    });
}

HRESULT GroupPolicyObject::Save(WINBOOL machine, WINBOOL add, GUID* extension, GUID* snapIn)
{
    return answer("IGroupPolicyObject::Save", [&] {
        if (!m_openedWith || !extension || !snapIn)
            return E_INVALIDARG;
        // Windows calls the save of settings that were not loaded a success, and nobody would find out.
        if (*m_openedWith != GPO_OPEN_LOAD_REGISTRY)
            return E_ACCESSDENIED;
        const auto text = [](const GUID& guid) { return vx::str::toUtf8(guidText(guid)); };
        machine::changeState([&](machine::MachineState& state) {
            keep(state, {machine != FALSE, add != FALSE, text(*extension), text(*snapIn)});
        });
        return S_OK;
    });
}

} // namespace devhost::systemobjects
