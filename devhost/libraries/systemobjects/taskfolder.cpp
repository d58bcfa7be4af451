#include "libraries/systemobjects/taskfolder.h"

#include "libraries/systemobjects/registeredtask.h"
#include "libraries/systemobjects/registration.h"
#include "libraries/systemobjects/taskdefinition.h"
#include "machine/machinefile.h"
#include "machine/taskpaths.h"

#include <algorithm>

namespace devhost::systemobjects {

namespace {

using machine::MachineState;

HRESULT missing(const MachineState& state, const std::string& path)
{
    const bool hasParent = hasFolder(state, machine::parentPath(path));
    return HRESULT_FROM_WIN32(hasParent ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND);
}

/// Makes the change and gives its result.
HRESULT change(const std::function<HRESULT(MachineState&)>& apply)
{
    HRESULT result = E_FAIL;
    machine::changeState([&](MachineState& state) { result = apply(state); });
    return result;
}

} // namespace

HRESULT openFolder(const std::string& path, ITaskFolder** folder)
{
    const auto state = machine::readState();
    if (!hasFolder(state, path))
        return missing(state, path);
    *folder = new TaskFolder(path);
    return S_OK;
}

std::string TaskFolder::pathOf(BSTR name) const
{
    return machine::joinPath(m_path, toText(name));
}

HRESULT TaskFolder::get_Name(BSTR* name)
{
    return answer("ITaskFolder::get_Name", name, [&] {
        *name = toBstr(m_path == machine::rootPath ? m_path : machine::nameOf(m_path));
        return S_OK;
    });
}

HRESULT TaskFolder::get_Path(BSTR* path)
{
    return answer("ITaskFolder::get_Path", path, [&] {
        *path = toBstr(m_path);
        return S_OK;
    });
}

HRESULT TaskFolder::GetFolder(BSTR path, ITaskFolder** folder)
{
    return answer("ITaskFolder::GetFolder", folder, [&] { return openFolder(pathOf(path), folder); });
}

HRESULT TaskFolder::CreateFolder(BSTR name, VARIANT sddl, ITaskFolder** folder)
{
    return answer("ITaskFolder::CreateFolder", folder, [&] {
        const auto path = pathOf(name);
        const auto result = change([&](MachineState& state) { return addFolder(state, path, sddl); });
        if (SUCCEEDED(result))
            *folder = new TaskFolder(path);
        return result;
    });
}

HRESULT TaskFolder::DeleteFolder(BSTR name, LONG flags)
{
    return answer("ITaskFolder::DeleteFolder", [&] {
        return change([path = pathOf(name), flags](MachineState& state) {
            if (flags != 0 || path == machine::rootPath)
                return E_INVALIDARG;
            if (!hasFolder(state, path))
                return missing(state, path);
            if (isUsed(state, path))
                return HRESULT_FROM_WIN32(ERROR_DIR_NOT_EMPTY);
            std::erase_if(state.folders, [&](const auto& folder) { return machine::samePath(folder.path, path); });
            return S_OK;
        });
    });
}

HRESULT TaskFolder::GetTask(BSTR path, IRegisteredTask** task)
{
    return answer("ITaskFolder::GetTask", task, [&] {
        auto state = machine::readState();
        const auto full = pathOf(path);
        const auto* found = findTask(state, full);
        if (!found)
            return missing(state, full);
        *task = new RegisteredTask(found->path);
        return S_OK;
    });
}

HRESULT TaskFolder::GetTasks(LONG flags, IRegisteredTaskCollection** tasks)
{
    return answer("ITaskFolder::GetTasks", tasks, [&] {
        const auto state = machine::readState();
        if (!hasFolder(state, m_path))
            return missing(state, m_path);
        std::vector<std::string> paths;
        for (const auto& task : state.tasks) {
            const bool isHidden = task.definition.at("Settings").value("Hidden", false);
            if (machine::samePath(machine::parentPath(task.path), m_path) && (!isHidden || flags & TASK_ENUM_HIDDEN))
                paths.push_back(task.path);
        }
        *tasks = new RegisteredTaskCollection(std::move(paths));
        return S_OK;
    });
}

HRESULT TaskFolder::DeleteTask(BSTR name, LONG flags)
{
    return answer("ITaskFolder::DeleteTask", [&] {
        return change([path = pathOf(name), flags](MachineState& state) {
            if (flags != 0)
                return E_INVALIDARG;
            if (!findTask(state, path))
                return missing(state, path);
            std::erase_if(state.tasks, [&](const auto& task) { return machine::samePath(task.path, path); });
            return S_OK;
        });
    });
}

HRESULT TaskFolder::RegisterTaskDefinition(BSTR path, ITaskDefinition* definition, LONG flags, VARIANT user,
    VARIANT password, TASK_LOGON_TYPE logon, VARIANT sddl, IRegisteredTask** task)
{
    return answer("ITaskFolder::RegisterTaskDefinition", task, [&] {
        const auto whole = TaskDefinition::read(definition);
        if (!whole)
            return E_INVALIDARG;
        const Registration registration{pathOf(path), *whole, flags, user, password, logon, sddl};
        const auto result = change([&](MachineState& state) { return registerTask(state, registration); });
        if (SUCCEEDED(result) && !(flags & TASK_VALIDATE_ONLY))
            *task = new RegisteredTask(registration.path);
        return result;
    });
}

} // namespace devhost::systemobjects
