#include "host/commands.h"
#include "host/printer.h"
#include "host/restartprogram.h"
#include "host/systemtext.h"
#include "host/table.h"
#include "host/testmachine.h"
#include "journal/journal.h"
#include "program/program.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using nlohmann::json;

struct PromptsOptions : MachineOptions {
    std::string action, program;
};

std::filesystem::path programOf(const PromptsOptions& options)
{
    const auto program = options.program.empty() ? program::ownFolder() / "restartprompt.exe"
                                                 : std::filesystem::absolute(vx::str::fromUtf8(options.program));
    return exists(program) ? program : throw CommandError(ExitCode::Failed, "there is no " + toText(program));
}

void printTable(Printer& printer, const std::vector<json>& prompts)
{
    Table table{{"TIME", "SESSION", "USER", "COMMAND LINE"}};
    for (const auto& prompt : prompts)
        table.push_back({prompt.at("time"), prompt.at("session").dump(), prompt.at("user"), prompt.at("command_line")});
    for (const auto& line : align(table))
        printer.line(line);
}

ExitCode showPrompts(Printer& printer)
{
    const auto program = readRestartProgram();
    if (!program)
        throw CommandError(ExitCode::Failed, "there is no restart program (prompts install)");
    const auto prompts = journal::Journal(program->parent_path() / journal::restartJournal).read();
    if (printer.isJson())
        for (const auto& prompt : prompts)
            printer.result({}, prompt);
    else if (prompts.empty())
        printer.line("nobody was asked to reboot");
    else
        printTable(printer, prompts);
    return ExitCode::Done;
}

ExitCode workOnPrompts(const Context& context, const PromptsOptions& options)
{
    requireTestMachine(options);
    if (options.action.empty())
        return showPrompts(context.printer);
    if (options.action == "remove") {
        writeRestartProgram(std::nullopt);
        context.printer.result("there is no restart program any more", {{"restart_program", nullptr}});
        return ExitCode::Done;
    }
    const auto program = programOf(options);
    writeRestartProgram(program);
    context.printer.result("users are asked to reboot by " + toText(program), {{"restart_program", toText(program)}});
    return ExitCode::Done;
}

} // namespace

void promptsCommands(Commands& commands)
{
    const auto [prompts, options] = commands.add(
        "prompts", "print how users were asked to reboot by the restart program's stand-in", workOnPrompts);
    prompts
        ->add_option("ACTION", options.action,
            "install: make it the program that users are asked with; remove: let there be none")
        ->check(CLI::IsMember({"install", "remove"}));
    prompts->add_option(
        "PROGRAM", options.program, "what to install; restartprompt.exe beside this program without it");
    addTestMachine(prompts, options);
}

} // namespace devhost::host
