#include "tarnhd/scheduler/execaction.h"

#include "logging/logstream.h"
#include "vxtl-com/succeeded.h"

#include <windows.h>

#include <taskschd.h>

namespace vx::scheduler {

using com::ComPtr;
using com::succeeded;
using logging::Level;
using logging::LogStream;

namespace {

ComPtr<IExecAction> createExecAction(IActionCollection& actions)
{
    ComPtr<IAction> action;
    ComPtr<IExecAction> result;
    if (!succeeded(actions.Create(TASK_ACTION_EXEC, action.put()), "Failed to create an action. HRESULT = ") ||
        !succeeded(action->QueryInterface(result.put()), "Failed to query action interface. HRESULT = "))
        return {};
    LogStream(Level::Info) << "Created action";
    return result;
}

} // namespace

ComPtr<IExecAction> findExecAction(ITaskDefinition& definition, MissingAction missing)
{
    ComPtr<IActionCollection> actions;
    LONG count = 0;
    if (!succeeded(definition.get_Actions(actions.put()), "Failed to get action for the task. HRESULT = ") ||
        !succeeded(actions->get_Count(&count), "Failed to get actions count. HRESULT = "))
        return {};
    LogStream(Level::Info) << "Task has " << count << "actions.";
    for (LONG index = 1; index <= count; ++index) {
        ComPtr<IAction> action;
        if (const HRESULT result = actions->get_Item(index, action.put()); FAILED(result)) {
            LogStream(Level::Error) << "Failed to get action item: " << index << ". HRESULT = " << result;
            return {};
        }
        ComPtr<IExecAction> execAction;
        if (SUCCEEDED(action->QueryInterface(execAction.put()))) {
            LogStream(Level::Info) << "Opened action #" << index;
            return execAction;
        }
    }
    return missing == MissingAction::Create ? createExecAction(*actions) : ComPtr<IExecAction>();
}

} // namespace vx::scheduler
