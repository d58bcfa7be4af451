#pragma once

#include "vxtl-com/comptr.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct IRegisteredTask;
struct ITaskDefinition;
struct ITaskFolder;

namespace vx::scheduler {

class Trigger;

enum class TaskState : std::int32_t { Unknown = 0, Enabled = 1, Running = 2, Disabled = 5 };

/// A task of the Task Scheduler: a definition in memory, which `save` registers, and the registered task, if there is
/// one. Nothing reaches the Task Scheduler before `save`. On the thread that made it. Operations that fail log why and
/// answer false, an empty text, or 0; lack of memory throws ComException.
class Task {
public:
    /// All operations read and write the definition; `registered` may be none.
    Task(std::wstring name, com::ComPtr<ITaskDefinition> definition, com::ComPtr<IRegisteredTask> registered,
        com::ComPtr<ITaskFolder> folder);
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    virtual ~Task();

    virtual std::wstring getName() const;
    virtual std::wstring getDescription() const;
    virtual bool setDescription(const std::wstring& description);
    /// Of the program that the task starts. Empty without one.
    virtual std::wstring getActionPath() const;
    virtual bool setActionPath(const std::wstring& path);
    virtual std::wstring getActionArguments() const;
    virtual bool setActionArguments(const std::wstring& arguments);
    /// A text that marks the task as somebody's.
    virtual bool setSignature(const std::wstring& signature);
    virtual bool hasSignature(const std::wstring& signature) const;
    /// A level from 1, the most urgent, to 4; 0 for a priority of no level.
    virtual int getPriority() const;
    /// The Task Scheduler refuses what is no level.
    virtual bool setPriority(int level);
    virtual bool isEnabled() const;
    virtual bool setEnabled(bool enabled);
    virtual bool isHidden() const;
    virtual bool setHidden(bool hidden);
    /// A start that was missed, say by a computer that was off, is made up for.
    virtual bool isStartWhenAvailable() const;
    virtual bool setStartWhenAvailable(bool startWhenAvailable);
    virtual std::wstring getUserId() const;
    /// The account that the task runs as; empty for the local system.
    virtual bool setUserId(const std::wstring& username);
    /// Replaces all triggers; an empty list leaves none.
    virtual bool setTriggers(const std::vector<std::shared_ptr<Trigger>>& triggers);
    virtual TaskState getState() const;
    /// Registers the task in place of one of the same name. It then runs as `username`, empty for the local system.
    virtual bool save(const std::wstring& username, const std::wstring& password);

private:
    bool putDefaults();
    bool putLimits();
    bool registerAs(const std::wstring& username, const std::wstring& password);

    std::wstring m_name;
    com::ComPtr<ITaskDefinition> m_definition;
    com::ComPtr<IRegisteredTask> m_registered; ///< none for a new task
    com::ComPtr<ITaskFolder> m_folder;
};

} // namespace vx::scheduler
