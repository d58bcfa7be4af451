#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// What the machine's file holds, as it stands there: a member that is missing has its default. Texts are UTF-8.
namespace devhost::machine {

/// The process that a task's action was last started as; it is told from a later one of the same id by its start.
struct TaskRun {
    unsigned long processId = 0;
    std::uint64_t started = 0; ///< as the system counts it for processes; 0 for a task that never ran

    bool operator==(const TaskRun&) const = default;
};

/// A registered task.
struct ScheduledTask {
    std::string path; ///< folders and name, "\A\B\Name"
    /// Named as the interfaces name it: objects RegistrationInfo, Principal and Settings, lists Triggers and Actions,
    /// text Data.
    nlohmann::json definition;
    std::string user;
    int logonType = 0;
    int registrationFlags = 0; ///< the interface's own
    std::string securityDescriptor;
    TaskRun lastRun;

    bool isEnabled() const { return definition.value(nlohmann::json::json_pointer("/Settings/Enabled"), true); }
};

struct TaskFolder {
    std::string path; ///< "\A\B"; the root is not listed
    std::string securityDescriptor;
};

/// What somebody committed to the local group policy.
struct PolicySave {
    bool machine = false;
    bool add = false;
    std::string extension; ///< a GUID in braces, like the snap-in
    std::string snapIn;

    bool operator==(const PolicySave&) const = default;
};

/// The next `count` calls of "INTERFACE::METHOD" give the result and do nothing, also when it is a success.
struct PlannedFailure {
    std::string call;
    std::int32_t result = 0;
    unsigned count = 1;

    bool operator==(const PlannedFailure&) const = default;
};

struct MachineState {
    std::vector<TaskFolder> folders;
    std::vector<ScheduledTask> tasks;
    std::string lastInstallation;        ///< of updates, in UTC, "2026-01-31T12:00:00"; empty for never
    std::vector<PolicySave> policySaves; ///< the latest, oldest first
    std::vector<PlannedFailure> plannedFailures;
};

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(TaskRun, processId, started)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(
    ScheduledTask, path, definition, user, logonType, registrationFlags, securityDescriptor, lastRun)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(TaskFolder, path, securityDescriptor)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(PolicySave, machine, add, extension, snapIn)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(PlannedFailure, call, result, count)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(
    MachineState, folders, tasks, lastInstallation, policySaves, plannedFailures)

} // namespace devhost::machine
