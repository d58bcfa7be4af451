#pragma once

#include "vxtl-com/comptr.h"

#include <memory>
#include <string>
#include <vector>

struct ITaskFolder;
struct ITaskService;

namespace vx::scheduler {

class Task;

/// Where the product's tasks are.
struct FolderNames {
    std::wstring tasks = L"Tasks"; ///< the Task Scheduler's own directory in the system directory
    std::wstring company = L"Vantorix";
    std::wstring product = L"Tarnpatch";
};

/// A connection to the Task Scheduler and the product's folder in it. Short-lived; on the thread that made it, which
/// must be in a COM apartment. Operations block for as long as the Task Scheduler takes. Those that fail log why and
/// answer false or with what they have, but where they are said to throw. All but Initialize want an Initialize that
/// has succeeded: without one, and for lack of memory, they throw ComException.
class Scheduler {
public:
    explicit Scheduler(com::ComPtr<ITaskService> service, FolderNames names = {});
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;
    virtual ~Scheduler();

    /// Connects and opens the folder, which is made if need be. Where stale files of the Task Scheduler block that,
    /// they are removed and this answers false; the next Initialize succeeds. Throws ComException without a service.
    virtual bool Initialize();
    /// Those in the folder, hidden ones too.
    virtual std::vector<std::wstring> getTaskNames();
    virtual bool deleteTask(const std::wstring& name);
    /// A registered task, with a new definition: nothing of the old one survives a save. Throws ComException.
    virtual std::shared_ptr<Task> getTask(const std::wstring& name);
    /// A new task. Throws ComException.
    virtual std::shared_ptr<Task> createTask(const std::wstring& name);
    virtual bool hasTask(const std::wstring& name);

private:
    enum class Attempt { Succeeded, Failed, Blocked };

    std::wstring folderPath() const;
    std::vector<std::wstring> directories() const;
    bool createFolder();
    Attempt tryToCreateFolder(ITaskFolder& root, const std::wstring& directory);

    FolderNames m_names;
    com::ComPtr<ITaskService> m_service;
    com::ComPtr<ITaskFolder> m_folder;
};

/// That of this computer. On one without a Task Scheduler, Initialize throws.
std::shared_ptr<Scheduler> createScheduler();

} // namespace vx::scheduler
