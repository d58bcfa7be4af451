#include "agent/agentrunner.h"
#include "agent/runjournal.h"

#include "common/factory/commonfactory.h"
#include "logging-backend/processlogger.h"
#include "program/program.h"
#include "settings-api/settings.h"
#include "vxtl/str.h"

#include <CLI/CLI.hpp>
#include <cstdio>

namespace {

using devhost::agent::AgentRunner;
using devhost::agent::AgentScript;
using devhost::agent::RunJournal;
using devhost::agent::Task;
using devhost::program::ownFolder;

// The agent's own codes for what can go wrong outside its script.
constexpr int badArgument = 2;
constexpr int noStore = 21;

constexpr auto description =
    R"(tarnag: a scripted stand-in for the agent.

The n-th start carries out the n-th entry of the script's list "runs"; the last one repeats. Starts with -c continue,
-c complete and -c queue have lists of their own, "continue", "complete" and "queue". Members of an entry, all optional: stdout (text),
startedEvent (named event to set), waitForEvent (named event to wait for) or durationMs, idle (true: the command is
left undone), missingUpdates (array), set (object of key and value; {"type": T, "value": V} gives a type), steps,
deploy, then hang or crash (true), or exitCode. Without a script a scan finds two updates, and the queue is deployed.

deploy is true or an object with any of: items (how many of the queue's; all), states (each update's, in order),
result (of the last state's log entries), code (of all states), stepMs (length of a state; 100), pauses (list of
{"at": STATE, "startedEvent": E, "waitForEvent": E}), reboot (true: the updates and the plug-in wait for a reboot).

steps is a list of what is done for real. In Windows itself: pause_updates, resume_updates, restore_updates, prompt (for
a reboot, in the agent's own session), prompt_sessions (in each session that the settings mean), and deploy for the
place of the deployment, which comes last otherwise. Outside, as an object of the step's name and its arguments:
download (url, target, headers, attempts, waitSeconds; byManagementServer, true: fetched by way of it), certificate
(store: MY, CA, ROOT or SPC; file) unless the settings remember one, flyer (heading, message, type 0 to 3, argument,
details: texts, menu and buttons: {"text": T, "action": A}, in the menu with "selected" too, action: {"type": 1 to 4,
"first": T, "second": T}), alert (type, data), ipc (channel, type, body, owner), winhttpProxy (proxy, bypass: the
machine's default up to the end of the steps). A download or a certificate that fails ends the run with its exit code.
Relative paths begin at the program's folder. A real Windows needs testMachine (true) for all of them.)";

struct CommandLine {
    std::string command;
    std::string severity;
    std::string script;

    Task task() const
    {
        for (const auto task : {Task::Continue, Task::Complete, Task::Queue})
            if (command == listOf(task))
                return task;
        return Task::Ordinary;
    }
};

AgentScript findScript(const std::string& named)
{
    if (!named.empty())
        return AgentScript::load(vx::str::fromUtf8(named));
    const auto file = ownFolder() / "tarnag.script.json";
    return std::filesystem::exists(file) ? AgentScript::load(file) : AgentScript();
}

int failed(int code, const std::exception& exception)
{
    std::fprintf(stderr, "tarnag: %s\n", exception.what());
    return code;
}

/// The agent's own log beside the plug-in's, open while a run lasts.
struct Log {
    Log() { VxQrlLogging::open("tarn", "tarnag", 4, 0); }
    ~Log() { VxQrlLogging::close(); }
};

int runScript(const RunJournal& journal, const devhost::agent::AgentRun& run, const CommandLine& commandLine)
{
    const Log log;
    int code = noStore;
    try {
        vx::tarn::common::CommonFactory factory;
        AgentRunner runner(factory, journal, ownFolder());
        const auto failure = runner.perform(run, commandLine.task(), commandLine.severity);
        // Noted before the end, which a hang or a crash does not come back from.
        if (failure || run.ending == devhost::agent::Ending::Exit)
            journal.appendEnd(failure.value_or(run.exitCode));
        code = failure ? *failure : AgentRunner::end(run);
    } catch (const std::exception& exception) {
        failed(code, exception);
        journal.appendEnd(code);
    }
    std::printf("tarnag: ending with %d\n", code);
    return code;
}

int start(const CommandLine& commandLine, const std::vector<std::string>& arguments)
{
    const RunJournal journal(devhost::journal::Journal(ownFolder() / devhost::journal::agentJournal));
    const auto task = commandLine.task();
    const auto number = journal.appendStart(arguments, listOf(task));
    std::printf("tarnag: start %u, command \"%s\", severity \"%s\"\n", static_cast<unsigned>(number + 1),
        commandLine.command.c_str(), commandLine.severity.c_str());
    std::optional<AgentScript> script;
    try {
        if (task == Task::Queue && commandLine.severity.empty())
            throw std::invalid_argument("queue takes a severity");
        script = findScript(commandLine.script);
    } catch (const std::exception& exception) {
        journal.appendEnd(badArgument);
        return failed(badArgument, exception);
    }
    return runScript(journal, script->runOf(number, task), commandLine);
}

} // namespace

int wmain(int count, wchar_t** texts)
{
    const auto arguments = devhost::program::begin(count, texts);
    CLI::App app(description, "tarnag");
    CommandLine commandLine;
    app.add_option("-c,--command", commandLine.command,
        "what to do, as the plug-in or a scheduled task asks:\n"
        "continue finishes a deployment at the boot that it waited for, complete closes it after that,\n"
        "queue puts the severity into the deployment queue");
    // The scheduled task's command line may end in "--severity=".
    app.add_option("--severity", commandLine.severity, "lowest severity to install")->expected(0, 1);
    app.add_option("--script", commandLine.script, "script file; tarnag.script.json beside the program without it")
        ->envname("TARNHD_AGENT_SCRIPT");
    app.footer("Starts, steps with their results and ends are listed in tarnag.runs.jsonl beside the program.\n"
               "Exit codes: the script's, or those of a step that fails (5 and 18 download, 518 certificate);\n"
               "2 bad command line or script, 21 something else that a run needs cannot be used, as the store.");
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        return start(commandLine, arguments);
    } catch (const CLI::ParseError& error) {
        return error.get_exit_code() == 0 ? app.exit(error) : failed(badArgument, error);
    } catch (const std::exception& exception) {
        return failed(1, exception);
    }
}
