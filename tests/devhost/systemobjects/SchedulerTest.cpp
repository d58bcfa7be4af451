#include "systemfixture.h"

#include "vxtl/wow64.h"

using devhost::machine::readState;

namespace {

constexpr HRESULT invalidValue = static_cast<HRESULT>(0x80041318);
constexpr HRESULT missingNode = static_cast<HRESULT>(0x80041319);

/// A directory where the scheduler, which is no 32-bit program, keeps its files.
class StaleDirectory {
public:
    explicit StaleDirectory(const std::wstring& name) : m_path(tasks() / name)
    {
        const vx::wow64::DisabledFsRedirection redirection;
        std::filesystem::create_directories(m_path);
    }
    ~StaleDirectory() { remove(); }
    StaleDirectory(const StaleDirectory&) = delete;
    StaleDirectory& operator=(const StaleDirectory&) = delete;

    void remove() const
    {
        const vx::wow64::DisabledFsRedirection redirection;
        std::filesystem::remove(m_path);
    }

private:
    static std::filesystem::path tasks()
    {
        wchar_t system[MAX_PATH];
        GetSystemDirectoryW(system, MAX_PATH);
        return std::filesystem::path(system) / L"Tasks";
    }

    const std::filesystem::path m_path;
};

} // namespace

TEST_F(TaskTest, keepsFoldersAndRefusesWhatIsNotThereOrThereAlready)
{
    const auto create = [&](const wchar_t* path) { return root->CreateFolder(Bstr(path).get(), {}, made.put()); };
    const auto open = [&](const wchar_t* path) { return service->GetFolder(Bstr(path).get(), made.put()); };
    EXPECT_EQ(open(L"\\A"), win32(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(open(L"\\A\\B"), win32(ERROR_PATH_NOT_FOUND));
    EXPECT_FALSE(made);
    EXPECT_EQ(create(L"\\A\\B"), S_OK);
    EXPECT_EQ(create(L"\\a\\b"), win32(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(open(L"\\A\\B"), S_OK);
    EXPECT_EQ(textOf([&](BSTR* path) { return made->get_Path(path); }), L"\\A\\B");
    EXPECT_EQ(root->DeleteFolder(Bstr(L"A").get(), 0), win32(ERROR_DIR_NOT_EMPTY));
    EXPECT_EQ(root->DeleteFolder(Bstr(L"A\\B").get(), 0), S_OK);
    EXPECT_EQ(open(L"\\A\\B"), win32(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(open(L"\\A"), S_OK) << "it was made on the way";
}

TEST_F(TaskTest, refusesAFolderWhoseDirectoryIsLeftOver)
{
    const auto name = folder.path().filename().wstring();
    const StaleDirectory stale(name);
    const auto create = [&] { return root->CreateFolder(Bstr(name + L"\\B").get(), {}, made.put()); };
    EXPECT_EQ(create(), win32(ERROR_ALREADY_EXISTS));
    EXPECT_TRUE(readState().folders.empty());
    stale.remove();
    EXPECT_EQ(create(), S_OK);
}

TEST_F(TaskTest, keepsATaskForAllProcesses)
{
    ComPtr<IRegistrationInfo> info;
    ComPtr<IPrincipal> principal;
    definition->get_RegistrationInfo(info.put());
    definition->get_Principal(principal.put());
    info->put_Author(Bstr(L"Somebody").get());
    principal->put_GroupId(Bstr(L"NT AUTHORITY\\SYSTEM").get());
    principal->put_LogonType(TASK_LOGON_SERVICE_ACCOUNT);
    trigger->put_Id(Bstr(L"trigger0").get());
    settings->put_StartWhenAvailable(VARIANT_TRUE);
    action->put_Arguments(Bstr(L"--x").get());
    definition->put_Data(Bstr(L"L\u00e9o").get());
    ASSERT_EQ(add(L"T"), S_OK);
    const auto stored = nlohmann::json(readState().tasks.at(0));
    EXPECT_EQ(stored.at("path"), "\\T");
    EXPECT_EQ(stored.at("logonType"), 5);
    const auto& whole = stored.at("definition");
    EXPECT_EQ(whole.at("RegistrationInfo").at("Author"), "Somebody");
    EXPECT_EQ(whole.at("Principal"), (nlohmann::json{{"GroupId", "NT AUTHORITY\\SYSTEM"}, {"LogonType", 5}}));
    EXPECT_EQ(whole.at("Triggers"), nlohmann::json::parse(R"([{"Type": 3, "Enabled": true, "Id": "trigger0",
        "StartBoundary": "2026-01-31T12:00:00", "WeeksInterval": 1, "DaysOfWeek": 10}])"));
    EXPECT_EQ(whole.at("Actions"),
        nlohmann::json::parse(R"([{"Type": 0, "Path": "C:\\a b\\tarnag.exe", "Arguments": "--x"}])"));
    EXPECT_EQ(whole.at("Settings").at("StartWhenAvailable"), true);
    EXPECT_EQ(whole.at("Data"), "L\xC3\xA9o");
}

TEST_F(TaskTest, changesATaskOnlyWhenItsDefinitionIsRegistered)
{
    ASSERT_EQ(add(L"T"), S_OK);
    ComPtr<ITaskDefinition> copy;
    ASSERT_EQ(registered->get_Definition(copy.put()), S_OK);
    copy->put_Data(Bstr(L"changed").get());
    definition->put_Data(Bstr(L"changed").get());
    EXPECT_EQ(readState().tasks.at(0).definition.at("Data"), "");
    EXPECT_EQ(add(L"T", TASK_CREATE), win32(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(add(L"t", TASK_UPDATE), S_OK);
    EXPECT_EQ(readState().tasks.at(0).definition.at("Data"), "changed");
    EXPECT_EQ(readState().tasks.size(), 1u);
}

TEST_F(TaskTest, listsTasksAndTellsTheirState)
{
    TASK_STATE state{};
    LONG count = 0;
    ComPtr<IRegisteredTaskCollection> tasks;
    settings->put_Hidden(VARIANT_TRUE);
    ASSERT_EQ(add(L"hidden"), S_OK);
    root->GetTasks(0, tasks.put());
    tasks->get_Count(&count);
    EXPECT_EQ(count, 0);
    root->GetTasks(TASK_ENUM_HIDDEN, tasks.put());
    tasks->get_Count(&count);
    EXPECT_EQ(count, 1);
    for (const LONG outside : {0, 2})
        EXPECT_EQ(tasks->get_Item(variantOf(outside), registered.put()), E_INVALIDARG) << outside;
    ASSERT_EQ(tasks->get_Item(variantOf(1), registered.put()), S_OK);
    EXPECT_EQ(textOf([&](BSTR* name) { return registered->get_Name(name); }), L"hidden");
    registered->get_State(&state);
    EXPECT_EQ(state, TASK_STATE_READY);
    registered->put_Enabled(VARIANT_FALSE);
    registered->get_State(&state);
    EXPECT_EQ(state, TASK_STATE_DISABLED);
    EXPECT_EQ(root->DeleteTask(Bstr(L"hidden").get(), 0), S_OK);
    EXPECT_EQ(registered->get_State(&state), win32(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(root->DeleteTask(Bstr(L"hidden").get(), 0), win32(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(root->GetTask(Bstr(L"hidden").get(), registered.put()), win32(ERROR_FILE_NOT_FOUND));
}

TEST_F(TaskTest, takesPrioritiesFromZeroToTen)
{
    const std::pair<INT, HRESULT> rows[] = {{-1, E_INVALIDARG}, {0, S_OK}, {10, S_OK}, {11, E_INVALIDARG}};
    for (const auto& [priority, result] : rows)
        EXPECT_EQ(settings->put_Priority(priority), result) << priority;
    INT priority = 0;
    settings->get_Priority(&priority);
    EXPECT_EQ(priority, 10) << "what is refused changes nothing";
}

TEST_F(TaskTest, takesTriggersAndActionsOutByTheirNumber)
{
    LONG count = 0;
    EXPECT_EQ(triggers->Create(TASK_TRIGGER_DAILY, trigger.put()), S_OK);
    EXPECT_EQ(triggers->Remove(variantOf(3)), E_INVALIDARG);
    EXPECT_EQ(triggers->Remove(variantOf(0)), E_INVALIDARG);
    EXPECT_EQ(triggers->Remove(variantOf(1)), S_OK);
    TASK_TRIGGER_TYPE2 type{};
    EXPECT_EQ(triggers->get_Item(1, trigger.put()), S_OK);
    trigger->get_Type(&type);
    EXPECT_EQ(type, TASK_TRIGGER_DAILY);
    ComPtr<IAction> item;
    EXPECT_EQ(actions->get_Item(2, item.put()), E_INVALIDARG);
    EXPECT_EQ(actions->Clear(), S_OK);
    actions->get_Count(&count);
    EXPECT_EQ(count, 0);
}

TEST_F(TaskTest, refusesToRegisterAWrongDefinition)
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
        {"no such hour", [&] { start(L"2026-01-31T24:00:00"); }, invalidValue, {}},
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
    EXPECT_TRUE(readState().tasks.empty());
}

TEST_F(TaskTest, refusesToRegisterInTheWrongWay)
{
    const struct {
        const char* what;
        const wchar_t* name;
        LONG flags;
        HRESULT result;
    } rows[] = {
        {"missing folder", L"A\\T", TASK_CREATE_OR_UPDATE, win32(ERROR_PATH_NOT_FOUND)},
        {"bad name", L"T?", TASK_CREATE_OR_UPDATE, win32(ERROR_INVALID_NAME)},
        {"no task to update", L"T", TASK_UPDATE, win32(ERROR_FILE_NOT_FOUND)},
        {"nothing to do", L"T", 0, E_INVALIDARG},
        {"only looked at", L"T", TASK_VALIDATE_ONLY, S_OK},
    };
    for (const auto& row : rows)
        EXPECT_EQ(add(row.name, row.flags), row.result) << row.what;
    EXPECT_EQ(root->RegisterTaskDefinition(
                  Bstr(L"T").get(), definition.get(), TASK_CREATE, {}, {}, TASK_LOGON_PASSWORD, {}, registered.put()),
        E_INVALIDARG);
    EXPECT_TRUE(readState().tasks.empty());
}
