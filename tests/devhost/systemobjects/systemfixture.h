#pragma once

#include "childprocess.h"
#include "machine/machinefile.h"
#include "vxtl-com/automaticupdates2.h"
#include "vxtl-com/weeklytrigger.h"
#include "vxtl/comutils.h"

#include <gmock/gmock.h>

/// One reference.
template <typename Interface>
class Com {
public:
    Com() = default;
    ~Com()
    {
        if (m_object)
            m_object->Release();
    }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;

    Interface* operator->() const { return m_object; }
    Interface* get() const { return m_object; }
    /// For a call that gives an object; drops the one before.
    Interface** out()
    {
        if (m_object)
            std::exchange(m_object, nullptr)->Release();
        return &m_object;
    }

private:
    Interface* m_object = nullptr;
};

struct Bstr {
    explicit Bstr(const wchar_t* content) : text(SysAllocString(content)) {}
    ~Bstr() { SysFreeString(text); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;

    BSTR text;
};

/// The text that a function of the form get_NAME gives.
template <typename Get>
std::wstring textOf(Get get)
{
    BSTR text = nullptr;
    EXPECT_EQ(get(&text), S_OK);
    const std::wstring copy(text ? text : L"(null)");
    SysFreeString(text);
    return copy;
}

inline VARIANT number(LONG value)
{
    VARIANT variant{};
    V_VT(&variant) = VT_I4;
    V_I4(&variant) = value;
    return variant;
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
    static HRESULT create(const CLSID& id, Com<Interface>& object)
    {
        return CoCreateInstance(id, nullptr, 0x17, __uuidof(Interface), reinterpret_cast<void**>(object.out()));
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
        EXPECT_EQ(service->GetFolder(Bstr(L"\\").text, root.out()), S_OK);
        EXPECT_EQ(service->NewTask(0, definition.out()), S_OK);
        EXPECT_EQ(definition->get_Triggers(triggers.out()), S_OK);
        EXPECT_EQ(definition->get_Actions(actions.out()), S_OK);
        EXPECT_EQ(definition->get_Settings(settings.out()), S_OK);
        EXPECT_EQ(triggers->Create(TASK_TRIGGER_WEEKLY, trigger.out()), S_OK);
        EXPECT_EQ(
            trigger->QueryInterface(__uuidof(vx::com::IWeeklyTrigger), reinterpret_cast<void**>(weekly.out())), S_OK);
        trigger->put_StartBoundary(Bstr(L"2026-01-31T12:00:00").text);
        weekly->put_DaysOfWeek(10);
        Com<IAction> created;
        EXPECT_EQ(actions->Create(TASK_ACTION_EXEC, created.out()), S_OK);
        EXPECT_EQ(created->QueryInterface(__uuidof(IExecAction), reinterpret_cast<void**>(action.out())), S_OK);
        action->put_Path(Bstr(L"C:\\a b\\tarnag.exe").text);
    }

    HRESULT add(const wchar_t* name, LONG flags = TASK_CREATE_OR_UPDATE)
    {
        return root->RegisterTaskDefinition(
            Bstr(name).text, definition.get(), flags, {}, {}, TASK_LOGON_SERVICE_ACCOUNT, {}, registered.out());
    }

    Com<ITaskService> service;
    Com<ITaskFolder> root, made;
    Com<ITaskDefinition> definition;
    Com<ITriggerCollection> triggers;
    Com<IActionCollection> actions;
    Com<ITaskSettings> settings;
    Com<ITrigger> trigger;
    Com<vx::com::IWeeklyTrigger> weekly;
    Com<IExecAction> action;
    Com<IRegisteredTask> registered;
};
