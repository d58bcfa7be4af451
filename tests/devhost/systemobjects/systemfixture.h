#pragma once

#include "machine/machinefile.h"
#include "stage.h"
#include "vxtl-com/automaticupdates2.h"
#include "vxtl-com/bstr.h"
#include "vxtl-com/comptr.h"
#include "vxtl-com/variant.h"
#include "vxtl-com/weeklytrigger.h"
#include "vxtl/comutils.h"

#include <gmock/gmock.h>

using vx::com::Bstr;
using vx::com::ComPtr;
using vx::com::variantOf;

/// The text that a function of the form get_NAME gives.
template <typename Get>
std::wstring textOf(Get get)
{
    Bstr text;
    EXPECT_EQ(get(text.put()), S_OK);
    return text.text();
}

constexpr HRESULT win32(unsigned code)
{
    return static_cast<HRESULT>(0x80070000u | code);
}

/// The registered classes, on a machine of its own.
class SystemTest : public testing::Test {
protected:
    SystemTest() { SetEnvironmentVariableW(L"TARNHD_MACHINE", (folder.path() / "machine.json").c_str()); }
    ~SystemTest() override { SetEnvironmentVariableW(L"TARNHD_MACHINE", nullptr); }

    template <typename Interface>
    static HRESULT create(const CLSID& id, ComPtr<Interface>& object)
    {
        return CoCreateInstance(id, nullptr, 0x17, __uuidof(Interface), reinterpret_cast<void**>(object.put()));
    }

    static void plan(const std::string& call, HRESULT result, unsigned count = 1)
    {
        devhost::machine::changeState([&](auto& state) { state.plannedFailures.push_back({call, result, count}); });
    }

    support::TemporaryFolder folder;
    vx::comutils::ComApartment apartment;
};

/// A connected scheduler and a definition that it would take.
class TaskTest : public SystemTest {
protected:
    TaskTest()
    {
        EXPECT_EQ(create(__uuidof(TaskScheduler), service), S_OK);
        EXPECT_EQ(service->Connect({}, {}, {}, {}), S_OK);
        EXPECT_EQ(service->GetFolder(Bstr(L"\\").get(), root.put()), S_OK);
        EXPECT_EQ(service->NewTask(0, definition.put()), S_OK);
        EXPECT_EQ(definition->get_Triggers(triggers.put()), S_OK);
        EXPECT_EQ(definition->get_Actions(actions.put()), S_OK);
        EXPECT_EQ(definition->get_Settings(settings.put()), S_OK);
        EXPECT_EQ(triggers->Create(TASK_TRIGGER_WEEKLY, trigger.put()), S_OK);
        EXPECT_EQ(
            trigger->QueryInterface(__uuidof(vx::com::IWeeklyTrigger), reinterpret_cast<void**>(weekly.put())), S_OK);
        trigger->put_StartBoundary(Bstr(L"2026-01-31T12:00:00").get());
        weekly->put_DaysOfWeek(10);
        ComPtr<IAction> created;
        EXPECT_EQ(actions->Create(TASK_ACTION_EXEC, created.put()), S_OK);
        EXPECT_EQ(created->QueryInterface(__uuidof(IExecAction), reinterpret_cast<void**>(action.put())), S_OK);
        action->put_Path(Bstr(L"C:\\a b\\tarnag.exe").get());
    }

    HRESULT add(const wchar_t* name, LONG flags = TASK_CREATE_OR_UPDATE)
    {
        return root->RegisterTaskDefinition(
            Bstr(name).get(), definition.get(), flags, {}, {}, TASK_LOGON_SERVICE_ACCOUNT, {}, registered.put());
    }

    ComPtr<ITaskService> service;
    ComPtr<ITaskFolder> root, made;
    ComPtr<ITaskDefinition> definition;
    ComPtr<ITriggerCollection> triggers;
    ComPtr<IActionCollection> actions;
    ComPtr<ITaskSettings> settings;
    ComPtr<ITrigger> trigger;
    ComPtr<vx::com::IWeeklyTrigger> weekly;
    ComPtr<IExecAction> action;
    ComPtr<IRegisteredTask> registered;
};
