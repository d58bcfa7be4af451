#include "tarnhd/scheduler/task.h"

#include "tarnhd/scheduler/execaction.h"
#include "tarnhd/scheduler/prioritylevel.h"
#include "tarnhd/scheduler/taskfolder.h"
#include "tarnhd/scheduler/triggers.h"

#include "logging/logstream.h"
#include "vxtl-com/bstr.h"
#include "vxtl-com/succeeded.h"
#include "vxtl-com/variant.h"

#include <taskschd.h>

namespace vx::scheduler {

using com::Bstr;
using com::ComPtr;
using com::succeeded;
using logging::Level;
using logging::LogStream;

namespace {

TASK_LOGON_TYPE logonTypeOf(const std::wstring& username)
{
    return username.empty() ? TASK_LOGON_SERVICE_ACCOUNT : TASK_LOGON_PASSWORD;
}

ComPtr<ITaskSettings> settingsOf(const ComPtr<ITaskDefinition>& definition)
{
    ComPtr<ITaskSettings> settings;
    succeeded(definition->get_Settings(settings.put()), "Failed to get task settings. HRESULT = ");
    return settings;
}

ComPtr<IRegistrationInfo> registrationInfoOf(const ComPtr<ITaskDefinition>& definition)
{
    ComPtr<IRegistrationInfo> info;
    succeeded(definition->get_RegistrationInfo(info.put()), "Failed to get task registration info. HRESULT = ");
    return info;
}

ComPtr<IPrincipal> principalOf(const ComPtr<ITaskDefinition>& definition)
{
    ComPtr<IPrincipal> principal;
    succeeded(definition->get_Principal(principal.put()), "Failed to get principal. HRESULT = ");
    return principal;
}

/// The call of an object's property, unless the object could not be had.
template <typename Interface, typename Property, typename Argument>
bool call(const ComPtr<Interface>& object, Property property, Argument argument, std::string_view failure)
{
    return object && succeeded((object.get()->*property)(argument), failure);
}

template <typename Interface, typename Get>
std::wstring readText(const ComPtr<Interface>& object, Get get, std::string_view failure)
{
    Bstr text;
    return call(object, get, text.put(), failure) ? text.text() : std::wstring();
}

template <typename Interface, typename Put>
bool writeText(const ComPtr<Interface>& object, Put put, const std::wstring& text, std::string_view failure)
{
    return call(object, put, Bstr(text).get(), failure);
}

template <typename Get>
bool readFlag(const ComPtr<ITaskSettings>& settings, Get get, std::string_view failure)
{
    VARIANT_BOOL flag = VARIANT_FALSE;
    return call(settings, get, &flag, failure) && flag != VARIANT_FALSE;
}

template <typename Put>
bool writeFlag(const ComPtr<ITaskSettings>& settings, Put put, bool value, std::string_view failure)
{
    return call(settings, put, static_cast<VARIANT_BOOL>(value ? VARIANT_TRUE : VARIANT_FALSE), failure);
}

} // namespace

Task::Task(std::wstring name, ComPtr<ITaskDefinition> definition, ComPtr<IRegisteredTask> registered,
    ComPtr<ITaskFolder> folder)
    : m_name(std::move(name)), m_definition(std::move(definition)), m_registered(std::move(registered)),
      m_folder(std::move(folder))
{}

Task::~Task() = default;

std::wstring Task::getName() const
{
    return m_name;
}

std::wstring Task::getDescription() const
{
    return readText(registrationInfoOf(m_definition), &IRegistrationInfo::get_Description,
        "Failed to get task description. HRESULT = ");
}

bool Task::setDescription(const std::wstring& description)
{
    return writeText(registrationInfoOf(m_definition), &IRegistrationInfo::put_Description, description,
        "Failed to put task description. HRESULT = ");
}

std::wstring Task::getActionPath() const
{
    return readText(findExecAction(*m_definition, MissingAction::Accept), &IExecAction::get_Path,
        "Failed to get action path. HRESULT = ");
}

bool Task::setActionPath(const std::wstring& path)
{
    return writeText(findExecAction(*m_definition, MissingAction::Create), &IExecAction::put_Path, path,
        "Failed to set action path. HRESULT = ");
}

std::wstring Task::getActionArguments() const
{
    return readText(findExecAction(*m_definition, MissingAction::Accept), &IExecAction::get_Arguments,
        "Failed to get action parameters. HRESULT = ");
}

bool Task::setActionArguments(const std::wstring& arguments)
{
    return writeText(findExecAction(*m_definition, MissingAction::Create), &IExecAction::put_Arguments, arguments,
        "Failed to set action parameters. HRESULT = ");
}

bool Task::setSignature(const std::wstring& signature)
{
    return writeText(m_definition, &ITaskDefinition::put_Data, signature, "Failed to set task signature. HRESULT = ");
}

bool Task::hasSignature(const std::wstring& signature) const
{
    Bstr data;
    const HRESULT result = m_definition->get_Data(data.put());
    const std::wstring text = SUCCEEDED(result) ? data.text() : std::wstring();
    if (text.empty())
        LogStream(Level::Error) << "Failed to get task definition. HRESULT = " << result;
    return !text.empty() && text == signature;
}

int Task::getPriority() const
{
    INT priority = 0;
    const bool isRead = call(
        settingsOf(m_definition), &ITaskSettings::get_Priority, &priority, "Failed to get task priority. HRESULT = ");
    return isRead ? levelOf(priority) : 0;
}

bool Task::setPriority(int level)
{
    return call(settingsOf(m_definition), &ITaskSettings::put_Priority, priorityOf(level),
        "Failed to set task priority. HRESULT = ");
}

bool Task::isEnabled() const
{
    return readFlag(
        settingsOf(m_definition), &ITaskSettings::get_Enabled, "Failed to get enabled state of task. HRESULT = ");
}

bool Task::setEnabled(bool enabled)
{
    return writeFlag(settingsOf(m_definition), &ITaskSettings::put_Enabled, enabled,
        "Failed to set enabled state of task. HRESULT = ");
}

bool Task::isHidden() const
{
    return readFlag(
        settingsOf(m_definition), &ITaskSettings::get_Hidden, "Failed to get hidden state of task. HRESULT = ");
}

bool Task::setHidden(bool hidden)
{
    return writeFlag(
        settingsOf(m_definition), &ITaskSettings::put_Hidden, hidden, "Failed to set hidden state of task. HRESULT = ");
}

bool Task::isStartWhenAvailable() const
{
    return readFlag(settingsOf(m_definition), &ITaskSettings::get_StartWhenAvailable,
        "Failed to get \"start when available\" state of task. HRESULT = ");
}

bool Task::setStartWhenAvailable(bool startWhenAvailable)
{
    return writeFlag(settingsOf(m_definition), &ITaskSettings::put_StartWhenAvailable, startWhenAvailable,
        "Failed to set \"start when available\" state of task. HRESULT = ");
}

std::wstring Task::getUserId() const
{
    return readText(principalOf(m_definition), &IPrincipal::get_UserId, "Failed to get user ID. HRESULT: ");
}

bool Task::setUserId(const std::wstring& username)
{
    const auto principal = principalOf(m_definition);
    const bool isPut =
        username.empty() ? writeText(principal, &IPrincipal::put_GroupId, L"NT AUTHORITY\\SYSTEM",
                               "Failed to set group id. HRESULT = ")
                         : writeText(principal, &IPrincipal::put_UserId, username, "Failed to set user id. HRESULT = ");
    return isPut &&
           call(principal, &IPrincipal::put_LogonType, logonTypeOf(username), "Failed to put logon type. HRESULT = ");
}

bool Task::setTriggers(const std::vector<std::shared_ptr<Trigger>>& triggers)
{
    VX_LOG_SCOPE();
    return replaceTriggers(*m_definition, triggers);
}

TaskState Task::getState() const
{
    TASK_STATE state = TASK_STATE_UNKNOWN;
    if (m_registered && SUCCEEDED(m_registered->get_State(&state)))
        switch (state) {
        case TASK_STATE_DISABLED: return TaskState::Disabled;
        case TASK_STATE_QUEUED:
        case TASK_STATE_READY: return TaskState::Enabled;
        case TASK_STATE_RUNNING: return TaskState::Running;
        default: break;
        }
    VARIANT_BOOL enabled = VARIANT_FALSE;
    if (!call(settingsOf(m_definition), &ITaskSettings::get_Enabled, &enabled,
            "Failed to get enabled state of task. HRESULT = "))
        return TaskState::Unknown;
    return enabled != VARIANT_FALSE ? TaskState::Enabled : TaskState::Disabled;
}

bool Task::save(const std::wstring& username, const std::wstring& password)
{
    VX_LOG_SCOPE();
    return putDefaults() && putLimits() && setUserId(username) && registerAs(username, password);
}

// The logon type stands until setUserId puts that of the account.
bool Task::putDefaults()
{
    ComPtr<IRegistrationInfo> info;
    return succeeded(m_definition->get_RegistrationInfo(info.put()), "Failed to get registration info. HRESULT = ") &&
           writeText(info, &IRegistrationInfo::put_Author, L"Tarnpatch Agent", "Failed to put author. HRESULT = ") &&
           call(principalOf(m_definition), &IPrincipal::put_LogonType, TASK_LOGON_INTERACTIVE_TOKEN,
               "Failed to set logon type. HRESULT = ");
}

bool Task::putLimits()
{
    const auto settings = settingsOf(m_definition);
    return call(settings, &ITaskSettings::put_MultipleInstances, TASK_INSTANCES_IGNORE_NEW,
               "Failed to set multiple instances. HRESULT = ") &&
           writeText(settings, &ITaskSettings::put_ExecutionTimeLimit, L"P3D",
               "Failed to set execution time limit. HRESULT = ");
}

bool Task::registerAs(const std::wstring& username, const std::wstring& password)
{
    if (m_registered) {
        LogStream(Level::Info) << "Task already exists. Update it.";
        m_registered.reset();
    }
    const Bstr user(username), secret(password), access(folderAccess);
    const bool hasAccount = !username.empty();
    if (!succeeded(m_folder->RegisterTaskDefinition(Bstr(m_name).get(), m_definition.get(),
                       TASK_CREATE_OR_UPDATE | TASK_IGNORE_REGISTRATION_TRIGGERS,
                       hasAccount ? com::variantOf(user) : com::emptyVariant(),
                       hasAccount ? com::variantOf(secret) : com::emptyVariant(), logonTypeOf(username),
                       com::variantOf(access), m_registered.put()),
            "Failed to register task definition. HRESULT = "))
        return false;
    LogStream(Level::Info) << "Task successfully saved.";
    return true;
}

} // namespace vx::scheduler
