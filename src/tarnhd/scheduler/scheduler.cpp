#include "tarnhd/scheduler/scheduler.h"

#include "tarnhd/scheduler/removetree.h"
#include "tarnhd/scheduler/task.h"
#include "tarnhd/scheduler/taskfolder.h"

#include "common/utils/folders.h"
#include "vxtl-com/bstr.h"
#include "vxtl-com/succeeded.h"
#include "vxtl-com/variant.h"
#include "vxtl/comexception.h"
#include "vxtl/guarded.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"
#include "vxtl/wow64.h"

#include <taskschd.h>

namespace vx::scheduler {

using com::Bstr;
using com::ComPtr;
using com::succeeded;
using logging::Level;
using logging::LogStream;

namespace {

std::optional<unsigned long> removeFromSystemDirectory(const std::wstring& directory)
{
    const wow64::DisabledFsRedirection realSystemDirectory;
    return removeTree(directory);
}

} // namespace

Scheduler::Scheduler(ComPtr<ITaskService> service, FolderNames names)
    : m_names(std::move(names)), m_service(std::move(service))
{}

Scheduler::~Scheduler() = default;

std::wstring Scheduler::folderPath() const
{
    return L'\\' + m_names.company + L'\\' + m_names.product;
}

/// Where the Task Scheduler keeps the folder; what blocks may be the inner one or the outer one.
std::vector<std::wstring> Scheduler::directories() const
{
    const std::wstring system = tarn::common::utils::getSystemFolder();
    if (system.empty())
        return {L"", L""}; // and not some directory of those names elsewhere
    const std::wstring outer = system + L'\\' + m_names.tasks + L'\\' + m_names.company;
    return {outer + L'\\' + m_names.product, outer};
}

bool Scheduler::Initialize()
{
    VX_LOG_SCOPE();
    const VARIANT own = com::emptyVariant(); // this computer, the caller's identity
    if (!succeeded(m_service->Connect(own, own, own, own), "Failed to connect to scheduler. HRESULT = "))
        return false;
    const HRESULT result = m_service->GetFolder(Bstr(folderPath()).get(), m_folder.put());
    if (result == S_OK)
        return true;
    if (result == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) || result == HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND))
        return createFolder();
    LogStream(Level::Error) << "Failed to open Scheduled Tasks folder. HRESULT = " << result;
    return false;
}

bool Scheduler::createFolder()
{
    ComPtr<ITaskFolder> root;
    if (!succeeded(m_service->GetFolder(Bstr(L"\\").get(), root.put()), "Failed to get scheduler folder. HRESULT = "))
        return false;
    for (const std::wstring& directory : directories()) {
        Attempt attempt = Attempt::Blocked;
        guarded("Caught an exception: ", [&] { attempt = tryToCreateFolder(*root, directory); });
        if (attempt != Attempt::Blocked)
            return attempt == Attempt::Succeeded;
    }
    LogStream(Level::Error) << "Failed to create Scheduled Tasks folder; path removal didn't help";
    return false;
}

Scheduler::Attempt Scheduler::tryToCreateFolder(ITaskFolder& root, const std::wstring& directory)
{
    const Bstr access(folderAccess);
    const HRESULT result = root.CreateFolder(Bstr(folderPath()).get(), com::variantOf(access), m_folder.put());
    if (result == S_OK)
        return Attempt::Succeeded;
    if (result != HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS)) {
        LogStream(Level::Error) << "Failed to create Scheduled Tasks folder. HRESULT = " << result;
        return Attempt::Failed;
    }
    const std::optional<unsigned long> error = removeFromSystemDirectory(directory);
    if (!error || *error != ERROR_SUCCESS)
        return Attempt::Blocked;
    // The way is free, but only the next Initialize takes it.
    LogStream(Level::Error) << "Failed to delete folder: " << directory
                            << ". Error code: " << str::trim(Win32ErrorCategory::emptyReason(*error));
    return Attempt::Failed;
}

std::vector<std::wstring> Scheduler::getTaskNames()
{
    VX_LOG_SCOPE();
    ComPtr<IRegisteredTaskCollection> tasks;
    LONG count = 0;
    std::vector<std::wstring> names;
    if (!succeeded(m_folder->GetTasks(TASK_ENUM_HIDDEN, tasks.put()), "Failed to get scheduler tasks. HRESULT = ") ||
        !succeeded(tasks->get_Count(&count), "Failed to get tasks count. HRESULT = "))
        return names;
    for (LONG index = 1; index <= count; ++index) {
        ComPtr<IRegisteredTask> task;
        if (const HRESULT result = tasks->get_Item(com::variantOf(index), task.put()); FAILED(result)) {
            LogStream(Level::Error) << "Failed to get task item #" << index << ". HRESULT = " << result;
            return names;
        }
        Bstr name;
        if (const HRESULT result = task->get_Name(name.put()); FAILED(result)) {
            LogStream(Level::Error) << "Failed to get task #" << index << " name. HRESULT = " << result;
            return names;
        }
        names.push_back(name.text());
    }
    return names;
}

bool Scheduler::deleteTask(const std::wstring& name)
{
    VX_LOG_SCOPE();
    const HRESULT result = m_folder->DeleteTask(Bstr(name).get(), 0);
    if (SUCCEEDED(result))
        return true;
    LogStream(Level::Error) << "Failed to delete a scheduler task " << name << ". HRESULT = " << result;
    return false;
}

std::shared_ptr<Task> Scheduler::getTask(const std::wstring& name)
{
    VX_LOG_SCOPE();
    ComPtr<IRegisteredTask> registered;
    ComPtr<ITaskDefinition> definition;
    HRESULT result = m_folder->GetTask(Bstr(name).get(), registered.put());
    if (SUCCEEDED(result))
        result = m_service->NewTask(0, definition.put());
    if (FAILED(result))
        VX_THROW_COM(result);
    return std::make_shared<Task>(name, definition, registered, m_folder);
}

std::shared_ptr<Task> Scheduler::createTask(const std::wstring& name)
{
    VX_LOG_SCOPE();
    ComPtr<ITaskDefinition> definition;
    const HRESULT result = m_service->NewTask(0, definition.put());
    if (FAILED(result))
        VX_THROW_COM(result);
    return std::make_shared<Task>(name, definition, ComPtr<IRegisteredTask>(), m_folder);
}

bool Scheduler::hasTask(const std::wstring& name)
{
    ComPtr<IRegisteredTask> task;
    return SUCCEEDED(m_folder->GetTask(Bstr(name).get(), task.put()));
}

std::shared_ptr<Scheduler> createScheduler()
{
    ComPtr<ITaskService> service;
    // Without one it is Initialize that fails.
    succeeded(CoCreateInstance(__uuidof(TaskScheduler), nullptr, CLSCTX_INPROC_SERVER, __uuidof(ITaskService),
                  reinterpret_cast<void**>(service.put())),
        "Failed to find the Task Scheduler. HRESULT = ");
    return std::make_shared<Scheduler>(std::move(service));
}

} // namespace vx::scheduler
