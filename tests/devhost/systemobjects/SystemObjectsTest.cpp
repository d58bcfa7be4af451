#include "support/machine.h"
#include "vxtl-com/automaticupdates2.h"
#include "vxtl-com/bstr.h"
#include "vxtl-com/comptr.h"
#include "vxtl-com/weeklytrigger.h"

#include <prsht.h>

#include <gpedit.h>

__CRT_UUID_DECL(IGroupPolicyObject, 0xea502723, 0xa23d, 0x11d1, 0xa7, 0xd3, 0x00, 0x00, 0xf8, 0x75, 0x71, 0xe3)

namespace {

using support::Machine;
using vx::com::Bstr;
using vx::com::ComPtr;

constexpr GUID automaticUpdates{0xbfe18e9c, 0x6d87, 0x4450, {0xb3, 0x7c, 0xe0, 0x2f, 0x0b, 0x37, 0x38, 0x03}};
constexpr GUID groupPolicyObject{0xea502722, 0xa23d, 0x11d1, {0xa7, 0xd3, 0x00, 0x00, 0xf8, 0x75, 0x71, 0xe3}};
constexpr HRESULT invalidValue = static_cast<HRESULT>(0x80041318);
constexpr HRESULT missingNode = static_cast<HRESULT>(0x80041319);

class SystemObjectsTest : public testing::Test {
protected:
    template <typename Interface>
    static ComPtr<Interface> create(const CLSID& id)
    {
        ComPtr<Interface> object;
        CoCreateInstance(
            id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), reinterpret_cast<void**>(object.put()));
        return object;
    }

    const Machine machine;
};

/// A connected scheduler and a definition that it would take.
class TaskSchedulerTest : public SystemObjectsTest {
protected:
    TaskSchedulerTest()
    {
        ComPtr<ITriggerCollection> triggers;
        ComPtr<IAction> created;
        service->Connect({}, {}, {}, {});
        service->GetFolder(Bstr(L"\\").get(), root.put());
        service->NewTask(0, definition.put());
        definition->get_Triggers(triggers.put());
        definition->get_Actions(actions.put());
        triggers->Create(TASK_TRIGGER_WEEKLY, trigger.put());
        trigger->QueryInterface(weekly.put());
        trigger->put_StartBoundary(Bstr(L"2026-01-31T12:00:00").get());
        weekly->put_DaysOfWeek(10);
        actions->Create(TASK_ACTION_EXEC, created.put());
        created->QueryInterface(action.put());
        action->put_Path(Bstr(L"program").get());
    }

    HRESULT add(const wchar_t* name, LONG flags = TASK_CREATE_OR_UPDATE, TASK_LOGON_TYPE logon = TASK_LOGON_NONE)
    {
        ComPtr<IRegisteredTask> registered;
        return root->RegisterTaskDefinition(
            Bstr(name).get(), definition.get(), flags, {}, {}, logon, {}, registered.put());
    }

    ComPtr<ITaskService> service = create<ITaskService>(__uuidof(TaskScheduler));
    ComPtr<ITaskFolder> root;
    ComPtr<ITaskDefinition> definition;
    ComPtr<IActionCollection> actions;
    ComPtr<ITrigger> trigger;
    ComPtr<vx::com::IWeeklyTrigger> weekly;
    ComPtr<IExecAction> action;
};

} // namespace

TEST_F(TaskSchedulerTest, refusesToRegisterAWrongDefinition)
{
    const auto start = [&](const wchar_t* text) { trigger->put_StartBoundary(Bstr(text).get()); };
    const auto end = [&](const wchar_t* text) { trigger->put_EndBoundary(Bstr(text).get()); };
    const struct {
        const char* what;
        std::function<void()> spoil;
        HRESULT result;
        std::function<void()> repair;
    } rows[] = {
        {"no start", [&] { start(L""); }, missingNode, {}},
        {"no such day", [&] { start(L"2026-02-29T12:00:00"); }, invalidValue, {}},
        {"another form", [&] { start(L"2026-01-31 12:00:00"); }, invalidValue, [&] { start(L"2026-01-31T12:00:00"); }},
        {"end before start", [&] { end(L"2026-01-31T11:59:59"); }, invalidValue, [&] { end(L""); }},
        {"no day", [&] { weekly->put_DaysOfWeek(0); }, invalidValue, {}},
        {"an eighth day", [&] { weekly->put_DaysOfWeek(128); }, invalidValue, [&] { weekly->put_DaysOfWeek(1); }},
        {"no interval", [&] { weekly->put_WeeksInterval(0); }, invalidValue, [&] { weekly->put_WeeksInterval(1); }},
        {"no program", [&] { action->put_Path(Bstr(L"").get()); }, missingNode, {}},
        {"no action", [&] { actions->Clear(); }, missingNode, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        row.spoil();
        EXPECT_EQ(add(L"T"), row.result);
        if (row.repair)
            row.repair();
    }
    EXPECT_TRUE(Machine::state().tasks.empty());
}

TEST_F(TaskSchedulerTest, refusesToRegisterInTheWrongWay)
{
    EXPECT_EQ(add(L"A\\T"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(add(L"T?"), HRESULT_FROM_WIN32(ERROR_INVALID_NAME));
    EXPECT_EQ(add(L"T", TASK_UPDATE), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(add(L"T", 0), E_INVALIDARG);
    EXPECT_EQ(add(L"T", TASK_CREATE | 0x40), E_INVALIDARG);
    EXPECT_EQ(add(L"T", TASK_CREATE, TASK_LOGON_PASSWORD), E_INVALIDARG) << "no account";
    EXPECT_EQ(add(L"T", TASK_VALIDATE_ONLY), S_OK);
    EXPECT_TRUE(Machine::state().tasks.empty());
    EXPECT_EQ(add(L"T", TASK_CREATE), S_OK);
    EXPECT_EQ(add(L"t", TASK_CREATE), HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS));
}

TEST_F(SystemObjectsTest, tellWhenUpdatesWereInstalled)
{
    const auto updates = create<vx::com::IAutomaticUpdates2>(automaticUpdates);
    ComPtr<vx::com::IAutomaticUpdatesResults> results;
    ASSERT_EQ(updates->get_Results(results.put()), S_OK);
    VARIANT date{};
    EXPECT_EQ(results->get_LastInstallationSuccessDate(&date), S_OK);
    EXPECT_EQ(V_VT(&date), VT_EMPTY);
    Machine::change([](auto& state) { state.lastInstallation = "2026-01-31T23:59:58"; });
    EXPECT_EQ(results->get_LastInstallationSuccessDate(&date), S_OK);
    ASSERT_EQ(V_VT(&date), VT_DATE);
    SYSTEMTIME time{};
    ASSERT_TRUE(VariantTimeToSystemTime(V_DATE(&date), &time));
    EXPECT_THAT((std::vector<int>{time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond}),
        testing::ElementsAre(2026, 1, 31, 23, 59, 58));
    Machine::plan("IAutomaticUpdatesResults::get_LastInstallationSuccessDate", {E_ABORT});
    EXPECT_EQ(results->get_LastInstallationSuccessDate(&date), E_ABORT);
    EXPECT_EQ(V_VT(&date), VT_EMPTY) << "nothing of an earlier call is left";
}

TEST_F(SystemObjectsTest, keepSavesOfThePolicy)
{
    const auto policy = create<IGroupPolicyObject>(groupPolicyObject);
    GUID extension = automaticUpdates, snapIn = groupPolicyObject;
    EXPECT_EQ(policy->Save(TRUE, FALSE, &extension, &snapIn), E_INVALIDARG) << "not opened";
    EXPECT_EQ(policy->OpenLocalMachineGPO(8), E_INVALIDARG);
    for (const DWORD flags : {0, GPO_OPEN_LOAD_REGISTRY | GPO_OPEN_READ_ONLY}) {
        EXPECT_EQ(policy->OpenLocalMachineGPO(flags), S_OK);
        EXPECT_EQ(policy->Save(TRUE, FALSE, &extension, &snapIn), E_ACCESSDENIED);
    }
    EXPECT_EQ(policy->OpenLocalMachineGPO(GPO_OPEN_LOAD_REGISTRY), S_OK);
    EXPECT_EQ(policy->Save(TRUE, FALSE, &extension, &snapIn), S_OK);
    EXPECT_THAT(Machine::state().policySaves,
        testing::ElementsAre(devhost::machine::PolicySave{
            true, false, "{BFE18E9C-6D87-4450-B37C-E02F0B373803}", "{EA502722-A23D-11D1-A7D3-0000F87571E3}"}));
}
