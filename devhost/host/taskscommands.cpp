#include "host/agentprocess.h"
#include "host/commands.h"
#include "host/printer.h"
#include "host/table.h"
#include "host/taskprocess.h"
#include "host/testmachine.h"
#include "ipc/instance.h"
#include "machine/localnow.h"
#include "machine/machinefile.h"
#include "machine/nextstart.h"
#include "machine/taskpaths.h"
#include "machine/taskrun.h"

namespace devhost::host {

namespace {

using machine::MachineState;
using machine::ScheduledTask;
using nlohmann::json;

struct TasksOptions : MachineOptions {
    std::string action, name;
    std::optional<unsigned> wait;
};

/// Empty for never.
std::string nextStartOf(const ScheduledTask& task)
{
    const auto next = machine::nextStart(task.definition, machine::localNow());
    return next ? machine::boundaryText(*next, ' ') : std::string();
}

/// A member of the first action; empty without one.
std::string actionText(const ScheduledTask& task, const char* name)
{
    const auto actions = task.definition.value("Actions", json::array());
    return actions.empty() ? std::string() : actions.front().value(name, "");
}

json describe(const ScheduledTask& task)
{
    json object = task;
    object.erase("lastRun");
    object["name"] = machine::nameOf(task.path);
    object["state"] = vx::toText(stateOf(task));
    object["next_start"] = nextStartOf(task);
    object["action"] = actionText(task, "Path");
    object["arguments"] = actionText(task, "Arguments");
    return object;
}

void printTable(Printer& printer, const std::vector<json>& tasks)
{
    Table table{{"NAME", "STATE", "NEXT START", "ACTION", "ARGUMENTS"}};
    for (const auto& task : tasks) {
        auto& row = table.emplace_back();
        for (const auto* member : {"name", "state", "next_start", "action", "arguments"})
            row.push_back(task.at(member));
    }
    for (const auto& line : align(table))
        printer.line(line);
}

ExitCode showTasks(const Context& context)
{
    std::vector<json> tasks;
    for (const auto& task : machine::readState().tasks)
        tasks.push_back(describe(task));
    auto& printer = context.printer;
    if (printer.isJson())
        for (const auto& task : tasks)
            printer.result({}, task);
    else if (tasks.empty())
        printer.line("no task is scheduled");
    else
        printTable(printer, tasks);
    return ExitCode::Done;
}

/// The task of that path, or the only one of that name.
ScheduledTask& findNamed(MachineState& state, const std::string& name)
{
    if (auto* task = findTask(state, name))
        return *task;
    ScheduledTask* found = nullptr;
    for (auto& task : state.tasks)
        if (machine::samePath(machine::nameOf(task.path), name)) {
            if (found)
                throw CommandError(ExitCode::Failed, "several tasks are called \"" + name + "\": give the whole path");
            found = &task;
        }
    if (!found)
        throw CommandError(ExitCode::Failed, "no task is called \"" + name + "\"");
    return *found;
}

StartedTask startNamed(const std::string& name)
{
    StartedTask started;
    machine::changeState([&](MachineState& state) {
        auto& task = findNamed(state, name);
        if (const auto taskState = stateOf(task); taskState != machine::TaskState::Ready)
            throw CommandError(ExitCode::Failed, "the task is " + vx::toText(taskState));
        started = startTask(task);
        task.lastRun = started.run;
    });
    return started;
}

ExitCode runTask(const Context& context, const TasksOptions& options)
{
    // What the task starts is to find this instance's store.
    ipc::exportInstance(context.instance);
    const auto started = startNamed(options.name);
    const auto id = started.run.processId;
    context.printer.result("started as process " + std::to_string(id), {{"pid", id}});
    if (!options.wait)
        return ExitCode::Done;
    const auto code = waitForExit(started.process->get(), std::chrono::seconds(*options.wait));
    if (!code)
        throw CommandError(ExitCode::TimedOut, "the task's program has not ended in time");
    context.printer.result("it has ended with " + std::to_string(*code), {{"exit_code", *code}});
    return ExitCode::Done;
}

ExitCode workOnTasks(const Context& context, const TasksOptions& options)
{
    requireTestMachine(options);
    if (options.action.empty())
        return showTasks(context);
    if (options.name.empty())
        throw CommandError(ExitCode::BadUsage, "tasks run: give the NAME of the task");
    return runTask(context, options);
}

} // namespace

void tasksCommands(Commands& commands)
{
    const auto [tasks, options] =
        commands.add("tasks", "print the tasks of the scheduler's stand-in, or start one as it would", workOnTasks);
    tasks->add_option("ACTION", options.action, "run: start the task's program, whatever its triggers say")
        ->check(CLI::IsMember({"run"}));
    tasks->add_option("NAME", options.name, "the task's name or path");
    tasks->add_option("--wait", options.wait, "seconds to wait for the program's end")->check(waitableSeconds);
    addTestMachine(tasks, options);
}

} // namespace devhost::host
