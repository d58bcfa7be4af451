#include "baretask.h"

#include "vxtl-com/bstr.h"
#include "vxtl-com/comptr.h"
#include "vxtl-com/variant.h"

#include <stdexcept>
#include <windows.h>

#include <taskschd.h>

namespace {

using vx::com::Bstr;
using vx::com::ComPtr;

void check(HRESULT result)
{
    if (FAILED(result))
        throw std::runtime_error("a bare call of the Task Scheduler fails: " + std::to_string(result));
}

ComPtr<ITaskService> connect()
{
    ComPtr<ITaskService> service;
    check(CoCreateInstance(__uuidof(TaskScheduler), nullptr, CLSCTX_INPROC_SERVER, __uuidof(ITaskService),
        reinterpret_cast<void**>(service.put())));
    const VARIANT own = vx::com::emptyVariant();
    check(service->Connect(own, own, own, own));
    return service;
}

void find(ITaskFolder& folder, const std::wstring& name)
{
    ComPtr<IRegisteredTask> task;
    check(folder.GetTask(Bstr(name).get(), task.put()));
}

void putPath(ITaskDefinition& definition, const std::wstring& path)
{
    ComPtr<IActionCollection> actions;
    ComPtr<IAction> action;
    ComPtr<IExecAction> execAction;
    LONG count = 0;
    check(definition.get_Actions(actions.put()));
    check(actions->get_Count(&count));
    check(actions->Create(TASK_ACTION_EXEC, action.put()));
    check(action->QueryInterface(execAction.put()));
    check(execAction->put_Path(Bstr(path).get()));
}

void putArguments(ITaskDefinition& definition)
{
    ComPtr<IActionCollection> actions;
    ComPtr<IAction> action;
    ComPtr<IExecAction> execAction;
    LONG count = 0;
    check(definition.get_Actions(actions.put()));
    check(actions->get_Count(&count));
    check(actions->get_Item(1, action.put()));
    check(action->QueryInterface(execAction.put()));
    check(execAction->put_Arguments(Bstr(L"--command=queue --severity=all").get()));
}

void putTrigger(ITaskDefinition& definition, const std::wstring& startBoundary)
{
    ComPtr<ITriggerCollection> triggers;
    ComPtr<ITrigger> trigger;
    ComPtr<IDailyTrigger> daily;
    LONG count = 0;
    check(definition.get_Triggers(triggers.put()));
    check(triggers->get_Count(&count));
    check(triggers->Create(TASK_TRIGGER_DAILY, trigger.put()));
    check(trigger->QueryInterface(daily.put()));
    check(daily->put_Id(Bstr(L"trigger0").get()));
    check(daily->put_StartBoundary(Bstr(startBoundary).get()));
    check(daily->put_DaysInterval(1));
}

void putAccount(ITaskDefinition& definition)
{
    ComPtr<IPrincipal> principal;
    check(definition.get_Principal(principal.put()));
    check(principal->put_LogonType(TASK_LOGON_INTERACTIVE_TOKEN));
    check(definition.get_Principal(principal.put()));
    check(principal->put_GroupId(Bstr(L"NT AUTHORITY\\SYSTEM").get()));
    check(principal->put_LogonType(TASK_LOGON_SERVICE_ACCOUNT));
}

void putRest(ITaskDefinition& definition)
{
    ComPtr<IRegistrationInfo> info;
    check(definition.get_RegistrationInfo(info.put()));
    check(info->put_Author(Bstr(L"Tarnpatch Agent").get()));
    ComPtr<ITaskSettings> settings;
    check(definition.get_Settings(settings.put()));
    check(settings->put_StartWhenAvailable(VARIANT_TRUE));
    check(definition.get_Settings(settings.put()));
    check(settings->put_MultipleInstances(TASK_INSTANCES_IGNORE_NEW));
    check(settings->put_ExecutionTimeLimit(Bstr(L"P3D").get()));
}

void registerTask(ITaskFolder& folder, const std::wstring& name, ITaskDefinition& definition)
{
    const Bstr access(L"D:(A;;FA;;;BA)(A;;FA;;;SY)");
    const VARIANT none = vx::com::emptyVariant();
    ComPtr<IRegisteredTask> task;
    check(folder.RegisterTaskDefinition(Bstr(name).get(), &definition,
        TASK_CREATE_OR_UPDATE | TASK_IGNORE_REGISTRATION_TRIGGERS, none, none, TASK_LOGON_SERVICE_ACCOUNT,
        vx::com::variantOf(access), task.put()));
}

} // namespace

void updateTaskBare(const std::wstring& task, const std::wstring& agent, const std::wstring& startBoundary)
{
    const auto service = connect();
    ComPtr<ITaskFolder> folder;
    ComPtr<ITaskDefinition> definition;
    check(service->GetFolder(Bstr(L"\\Vantorix\\Tarnpatch").get(), folder.put()));
    find(*folder, task);
    find(*folder, task);
    check(service->NewTask(0, definition.put()));
    putPath(*definition, agent);
    putArguments(*definition);
    putTrigger(*definition, startBoundary);
    putAccount(*definition);
    putRest(*definition);
    registerTask(*folder, task, *definition);
}
