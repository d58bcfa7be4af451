#include "tarnctl/health/taskfacts.h"

#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "tarnhd/autoinstallation/autoinstallation.h"
#include "tarnhd/autoinstallation/schedule.h"
#include "tarnhd/scheduler/scheduler.h"
#include "vxtl-com/bstr.h"
#include "vxtl-com/comptr.h"
#include "vxtl-com/variant.h"
#include "vxtl-com/weeklytrigger.h"
#include "vxtl/comexception.h"
#include "vxtl/str.h"

#include <windows.h>

#include <taskschd.h>

namespace tarnctl::health {

using namespace vx::tarn;
using vx::com::Bstr;
using vx::com::ComPtr;

namespace {

/// What of a task is compared.
struct Task {
    std::wstring arguments;
    std::wstring start;    ///< of the first trigger: "2026-11-22T12:00:00"
    std::int32_t days = 0; ///< 0 for each day
    bool isEnabled = true;
};

void check(HRESULT result, const wchar_t* call)
{
    if (FAILED(result))
        VX_THROW_COM(result, call);
}

bool isMissing(HRESULT result)
{
    return result == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) || result == HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
}

template <typename Interface, typename Source>
ComPtr<Interface> queried(Source& source)
{
    ComPtr<Interface> result;
    check(source.QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(result.put())), L"QueryInterface");
    return result;
}

/// None where there is no such folder or task.
ComPtr<IRegisteredTask> findTask()
{
    ComPtr<ITaskService> service;
    check(CoCreateInstance(__uuidof(TaskScheduler), nullptr, CLSCTX_INPROC_SERVER, __uuidof(ITaskService),
              reinterpret_cast<void**>(service.put())),
        L"CoCreateInstance");
    const VARIANT own = vx::com::emptyVariant();
    check(service->Connect(own, own, own, own), L"Connect");
    const vx::scheduler::FolderNames names;
    ComPtr<ITaskFolder> folder;
    ComPtr<IRegisteredTask> task;
    auto result = service->GetFolder(Bstr(L'\\' + names.company + L'\\' + names.product).get(), folder.put());
    if (isMissing(result))
        return task;
    check(result, L"GetFolder");
    result = folder->GetTask(Bstr(automaticInstallationTask).get(), task.put());
    if (!isMissing(result))
        check(result, L"GetTask");
    return task;
}

std::wstring readArguments(ITaskDefinition& definition)
{
    ComPtr<IActionCollection> actions;
    ComPtr<IAction> action;
    Bstr arguments;
    check(definition.get_Actions(actions.put()), L"get_Actions");
    check(actions->get_Item(1, action.put()), L"get_Item");
    check(queried<IExecAction>(*action)->get_Arguments(arguments.put()), L"get_Arguments");
    return arguments.text();
}

void readTrigger(ITaskDefinition& definition, Task& task)
{
    ComPtr<ITriggerCollection> triggers;
    ComPtr<ITrigger> trigger;
    TASK_TRIGGER_TYPE2 type = TASK_TRIGGER_DAILY;
    Bstr start;
    check(definition.get_Triggers(triggers.put()), L"get_Triggers");
    check(triggers->get_Item(1, trigger.put()), L"get_Item");
    check(trigger->get_Type(&type), L"get_Type");
    check(trigger->get_StartBoundary(start.put()), L"get_StartBoundary");
    task.start = start.text();
    short days = 0;
    if (type == TASK_TRIGGER_WEEKLY)
        check(queried<vx::com::IWeeklyTrigger>(*trigger)->get_DaysOfWeek(&days), L"get_DaysOfWeek");
    task.days = days;
}

Task readTask(IRegisteredTask& registered)
{
    ComPtr<ITaskDefinition> definition;
    check(registered.get_Definition(definition.put()), L"get_Definition");
    VARIANT_BOOL enabled = VARIANT_TRUE;
    check(registered.get_Enabled(&enabled), L"get_Enabled");
    Task task;
    task.isEnabled = enabled != VARIANT_FALSE;
    task.arguments = readArguments(*definition);
    readTrigger(*definition, task);
    return task;
}

std::string differenceOf(const Task& task, const AutomaticInstallationSettings& automatic)
{
    if (!task.isEnabled)
        return "it is switched off in the Task Scheduler";
    const auto severity = severityOf(automatic.mode());
    if (!task.arguments.ends_with(L'=' + severity))
        return "it installs \"" + vx::str::toUtf8Lossy(task.arguments) + "\", wanted is " + vx::str::toUtf8(severity);
    if (task.days != dayOfWeekOf(automatic.frequency()))
        return "it runs on other days than the settings ask for";
    const auto hour = automatic.hour();
    const auto wanted = (hour < 10 ? L"T0" : L"T") + std::to_wstring(hour) + L':';
    // A number that is no hour moves the day, and a change of the clocks the hour.
    if (hour >= 0 && hour < 24 && task.start.find(wanted) == std::wstring::npos)
        return "it begins at " + vx::str::toUtf8Lossy(task.start) + ", wanted is the hour " + std::to_string(hour);
    return {};
}

} // namespace

ScheduledTask readTask(const std::shared_ptr<vx::settings::Settings>& store)
{
    const AutomaticInstallationSettings automatic(store);
    ScheduledTask result;
    result.wanted = TarnpatchStatus(store).enabled() && automatic.mode() != ModeItem::Disable;
    const auto task = findTask();
    result.exists = static_cast<bool>(task);
    if (result.wanted && result.exists)
        result.difference = differenceOf(readTask(*task), automatic);
    return result;
}

} // namespace tarnctl::health
