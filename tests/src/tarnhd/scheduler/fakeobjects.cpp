#include "fakeobjects.h"

#include "vxtl-com/weeklytrigger.h"

#include <oleauto.h>

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <type_traits>

namespace fake {

namespace {

Script* script = nullptr;

template <typename T>
T answer(const std::map<std::string, std::vector<T>>& answers, const std::string& name, std::size_t call)
{
    const auto found = answers.find(name);
    return found != answers.end() && call < found->second.size() ? found->second[call] : T();
}

/// As a caller sees it: a pointer to the table of methods.
struct Object {
    void* const* table;
    std::string name;
};

ULONG STDMETHODCALLTYPE addRef(Object*)
{
    return static_cast<ULONG>(++script->references);
}

ULONG STDMETHODCALLTYPE release(Object*)
{
    return static_cast<ULONG>(--script->references);
}

void STDMETHODCALLTYPE unexpected(Object* object)
{
    ADD_FAILURE() << "a call of an unlisted method of " << object->name;
    std::abort();
}

template <typename Interface>
Object* objectOf();

HRESULT STDMETHODCALLTYPE queryInterface(Object* object, REFIID id, void** result)
{
    const std::string name = object->name + "::QueryInterface";
    if (const HRESULT failure = answer(script->results, name, script->counts[name]++))
        return failure;
    *result = id == __uuidof(IExecAction)     ? objectOf<IExecAction>()
              : id == __uuidof(IDailyTrigger) ? objectOf<IDailyTrigger>()
                                              : objectOf<vx::com::IWeeklyTrigger>();
    addRef(object);
    return S_OK;
}

std::string narrow(const wchar_t* text)
{
    const std::wstring wide = text ? text : L"";
    return std::string(wide.begin(), wide.end());
}

std::string show(const VARIANT& value)
{
    switch (V_VT(&value)) {
    case VT_EMPTY: return "empty";
    case VT_I4: return std::to_string(V_I4(&value));
    default: return narrow(V_BSTR(&value));
    }
}

/// An argument that goes in is shown; one that takes something is filled.
template <typename T>
void pass(const std::string& name, std::size_t call, T argument, std::string& shown, bool succeeds)
{
    if constexpr (std::is_same_v<T, BSTR>)
        shown += " " + narrow(argument);
    else if constexpr (std::is_same_v<T, VARIANT>)
        shown += " " + show(argument);
    else if constexpr (!std::is_pointer_v<T>)
        shown += " " + std::to_string(argument);
    else if constexpr (std::is_same_v<T, BSTR*>)
        *argument = succeeds ? SysAllocString(answer(script->texts, name, call).c_str()) : nullptr;
    else if constexpr (std::is_pointer_v<std::remove_pointer_t<T>>) {
        using Interface = std::remove_pointer_t<std::remove_pointer_t<T>>;
        if (succeeds)
            *argument = object<Interface>().get(), addRef(nullptr);
    } else if constexpr (!std::is_class_v<std::remove_pointer_t<T>>)
        *argument = static_cast<std::remove_pointer_t<T>>(answer(script->numbers, name, call));
}

template <auto method>
std::string nameOf;

/// Stands in the table for the method.
template <auto method, typename Interface, typename... Arguments>
HRESULT STDMETHODCALLTYPE answerCall(Object*, Arguments... arguments)
{
    const std::string& name = nameOf<method>;
    const std::size_t call = script->counts[name]++;
    if (name == script->throwing && call == 0)
        throw std::runtime_error("thrown");
    const HRESULT result = answer(script->results, name, call);
    std::string shown = name;
    (pass(name, call, arguments, shown, SUCCEEDED(result)), ...);
    script->calls.push_back(shown);
    return result;
}

template <auto method, typename Interface, typename... Arguments>
void* standIn(HRESULT (STDMETHODCALLTYPE Interface::*)(Arguments...))
{
    return reinterpret_cast<void*>(&answerCall<method, Interface, Arguments...>);
}

struct Table {
    Table()
    {
        for (void*& slot : slots)
            slot = reinterpret_cast<void*>(&unexpected);
        slots[0] = reinterpret_cast<void*>(&queryInterface);
        slots[1] = reinterpret_cast<void*>(&addRef);
        slots[2] = reinterpret_cast<void*>(&release);
    }
    /// The slot is the compiler's: it stands in the method's pointer.
    template <auto method>
    void add(const char* name)
    {
        std::intptr_t words[2];
        const auto pointer = method;
        static_assert(sizeof(pointer) == sizeof(words));
        std::memcpy(words, &pointer, sizeof(words));
        nameOf<method> = name;
        slots[static_cast<std::size_t>(words[0] - 1) / sizeof(void*)] = standIn<method>(method);
    }
    void* slots[64];
};

#define METHOD(interfaceName, method) table.add<&interfaceName::method>(#interfaceName "::" #method)

void list(Table& table, ITaskService*)
{
    METHOD(ITaskService, Connect);
    METHOD(ITaskService, GetFolder);
    METHOD(ITaskService, NewTask);
}
void list(Table& table, ITaskFolder*)
{
    METHOD(ITaskFolder, CreateFolder);
    METHOD(ITaskFolder, GetTask);
    METHOD(ITaskFolder, GetTasks);
    METHOD(ITaskFolder, DeleteTask);
    METHOD(ITaskFolder, RegisterTaskDefinition);
}
void list(Table& table, IRegisteredTaskCollection*)
{
    METHOD(IRegisteredTaskCollection, get_Count);
    METHOD(IRegisteredTaskCollection, get_Item);
}
void list(Table& table, IRegisteredTask*)
{
    METHOD(IRegisteredTask, get_Name);
    METHOD(IRegisteredTask, get_State);
}
void list(Table& table, ITaskDefinition*)
{
    METHOD(ITaskDefinition, get_RegistrationInfo);
    METHOD(ITaskDefinition, get_Triggers);
    METHOD(ITaskDefinition, get_Settings);
    METHOD(ITaskDefinition, get_Data);
    METHOD(ITaskDefinition, put_Data);
    METHOD(ITaskDefinition, get_Principal);
    METHOD(ITaskDefinition, get_Actions);
}
void list(Table& table, IRegistrationInfo*)
{
    METHOD(IRegistrationInfo, get_Description);
    METHOD(IRegistrationInfo, put_Description);
    METHOD(IRegistrationInfo, put_Author);
}
void list(Table& table, ITaskSettings*)
{
    METHOD(ITaskSettings, put_MultipleInstances);
    METHOD(ITaskSettings, put_ExecutionTimeLimit);
    METHOD(ITaskSettings, get_Priority);
    METHOD(ITaskSettings, put_Priority);
    METHOD(ITaskSettings, get_Enabled);
    METHOD(ITaskSettings, put_Enabled);
    METHOD(ITaskSettings, get_Hidden);
    METHOD(ITaskSettings, put_Hidden);
    METHOD(ITaskSettings, get_StartWhenAvailable);
    METHOD(ITaskSettings, put_StartWhenAvailable);
}
void list(Table& table, IPrincipal*)
{
    METHOD(IPrincipal, get_UserId);
    METHOD(IPrincipal, put_UserId);
    METHOD(IPrincipal, put_GroupId);
    METHOD(IPrincipal, put_LogonType);
}
void list(Table& table, IActionCollection*)
{
    METHOD(IActionCollection, get_Count);
    METHOD(IActionCollection, get_Item);
    METHOD(IActionCollection, Create);
}
void list(Table&, IAction*) {}
void list(Table& table, IExecAction*)
{
    METHOD(IExecAction, get_Path);
    METHOD(IExecAction, put_Path);
    METHOD(IExecAction, get_Arguments);
    METHOD(IExecAction, put_Arguments);
}
void list(Table& table, ITriggerCollection*)
{
    METHOD(ITriggerCollection, get_Count);
    METHOD(ITriggerCollection, Create);
    METHOD(ITriggerCollection, Remove);
}
void list(Table& table, ITrigger*)
{
    METHOD(ITrigger, put_Id);
    METHOD(ITrigger, put_StartBoundary);
    METHOD(ITrigger, put_EndBoundary);
}
void list(Table& table, IDailyTrigger*)
{
    list(table, static_cast<ITrigger*>(nullptr));
    METHOD(IDailyTrigger, put_DaysInterval);
}
void list(Table& table, vx::com::IWeeklyTrigger*)
{
    using vx::com::IWeeklyTrigger;
    list(table, static_cast<ITrigger*>(nullptr));
    METHOD(IWeeklyTrigger, put_DaysOfWeek);
    METHOD(IWeeklyTrigger, put_WeeksInterval);
}

template <typename Interface>
Object* objectOf()
{
    static const Table table = [] {
        Table made;
        list(made, static_cast<Interface*>(nullptr));
        return made;
    }();
    static Object object{table.slots, std::is_same_v<Interface, IAction> ? "IAction" : "ITrigger"};
    return &object;
}

} // namespace

template <typename Interface>
vx::com::ComPtr<Interface> object()
{
    return vx::com::ComPtr<Interface>(reinterpret_cast<Interface*>(objectOf<Interface>()));
}

template vx::com::ComPtr<ITaskService> object();
template vx::com::ComPtr<ITaskFolder> object();
template vx::com::ComPtr<ITaskDefinition> object();
template vx::com::ComPtr<IRegisteredTask> object();
template vx::com::ComPtr<ITriggerCollection> object();

Script::Script()
{
    script = this;
}

Script::~Script()
{
    EXPECT_EQ(references, 0);
}

} // namespace fake
