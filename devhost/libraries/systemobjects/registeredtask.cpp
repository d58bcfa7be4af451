#include "libraries/systemobjects/registeredtask.h"

#include "libraries/systemobjects/position.h"
#include "libraries/systemobjects/taskdefinition.h"
#include "machine/machinefile.h"
#include "machine/taskpaths.h"
#include "machine/taskrun.h"

namespace devhost::systemobjects {

namespace {

/// Lets `use` have the task, if there is still one.
HRESULT withTask(const std::string& path, const std::function<void(machine::ScheduledTask&)>& use)
{
    HRESULT result = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    machine::changeState([&](machine::MachineState& state) {
        if (auto* task = findTask(state, path)) {
            use(*task);
            result = S_OK;
        }
    });
    return result;
}

} // namespace

HRESULT RegisteredTask::get_Name(BSTR* name)
{
    return answer("IRegisteredTask::get_Name", name, [&] {
        *name = toBstr(machine::nameOf(m_path));
        return S_OK;
    });
}

HRESULT RegisteredTask::get_Path(BSTR* path)
{
    return answer("IRegisteredTask::get_Path", path, [&] {
        *path = toBstr(m_path);
        return S_OK;
    });
}

HRESULT RegisteredTask::get_State(TASK_STATE* state)
{
    return answer("IRegisteredTask::get_State", state, [&] {
        return withTask(
            m_path, [&](const machine::ScheduledTask& task) { *state = static_cast<TASK_STATE>(stateOf(task)); });
    });
}

HRESULT RegisteredTask::get_Enabled(VARIANT_BOOL* enabled)
{
    return answer("IRegisteredTask::get_Enabled", enabled, [&] {
        return withTask(m_path,
            [&](const machine::ScheduledTask& task) { *enabled = task.isEnabled() ? VARIANT_TRUE : VARIANT_FALSE; });
    });
}

HRESULT RegisteredTask::put_Enabled(VARIANT_BOOL enabled)
{
    return answer("IRegisteredTask::put_Enabled", [&] {
        return withTask(m_path,
            [&](machine::ScheduledTask& task) { task.definition["Settings"]["Enabled"] = enabled != VARIANT_FALSE; });
    });
}

HRESULT RegisteredTask::get_Definition(ITaskDefinition** definition)
{
    return answer("IRegisteredTask::get_Definition", definition, [&] {
        return withTask(m_path, [&](const machine::ScheduledTask& task) {
            *definition = new TaskDefinition(DefinitionParts(task.definition));
        });
    });
}

HRESULT RegisteredTaskCollection::get_Count(LONG* count)
{
    return answer("IRegisteredTaskCollection::get_Count", count, [&] {
        *count = static_cast<LONG>(m_paths.size());
        return S_OK;
    });
}

HRESULT RegisteredTaskCollection::get_Item(VARIANT index, IRegisteredTask** task)
{
    return answer("IRegisteredTaskCollection::get_Item", task, [&] {
        const auto position = positionOf(index, m_paths.size());
        if (!position)
            return E_INVALIDARG;
        *task = new RegisteredTask(m_paths[*position]);
        return S_OK;
    });
}

} // namespace devhost::systemobjects
