#include "host/commandline.h"

#include "host/commands.h"
#include "host/printer.h"
#include "host/stopsignal.h"
#include "store/protocol/errorcode.h"
#include "vxtl/str.h"

#include <ostream>

namespace devhost::host {

namespace {

std::string exitCodes()
{
    std::string text = "Exit codes:";
    for (int code = 0; const char* words = wordsOf(static_cast<ExitCode>(code)); ++code)
        text += "\n  " + std::to_string(code) + "  " + words;
    return text;
}

/// What all commands share of the command line.
struct SharedOptions {
    std::string instance = "default";
    bool json = false;
};

void describe(CLI::App& app, SharedOptions& shared)
{
    app.footer(exitCodes());
    app.add_option("--instance", shared.instance, "which host and store; one host runs per instance")
        ->envname("TARNHD_INSTANCE")
        ->capture_default_str();
    app.add_flag("--json", shared.json, "print one JSON object per line");
    // At least one is asked for by perform: the parser would hide a misspelt one behind that message.
    app.require_subcommand(0, 1);
    app.fallthrough();
}

ExitCode perform(const Commands::Action& action, const SharedOptions& shared, std::ostream& output)
{
    if (!action)
        throw CommandError(ExitCode::BadUsage, "a subcommand is required: see tarnhost --help");
    Printer printer(shared.json ? Printer::Form::Json : Printer::Form::Text, output);
    StopSignal stop;
    return action({vx::str::fromUtf8(shared.instance), printer, stop});
}

} // namespace

int runCommandLine(const std::vector<std::string>& arguments, std::ostream& output, std::ostream& errors)
{
    const auto fail = [&](ExitCode code, const char* line) {
        errors << "tarnhost: " << line << std::endl;
        return static_cast<int>(code);
    };
    SharedOptions shared;
    CLI::App app("tarnhost: a console host for the plug-in tarnhd.dll, with its store.", "tarnhost");
    Commands commands(app);
    describe(app, shared);
    addFamilies(commands);
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        return static_cast<int>(perform(commands.chosen(), shared, output));
    } catch (const CLI::ParseError& error) {
        return error.get_exit_code() == 0 ? app.exit(error, output) : fail(ExitCode::BadUsage, error.what());
    } catch (const CommandError& error) {
        return fail(error.code(), error.what());
    } catch (const store::StoreException& error) {
        const bool gone = error.code() == store::ErrorCode::Unreachable;
        return fail(gone ? ExitCode::NotRunning : ExitCode::Failed, error.what());
    } catch (const std::exception& exception) {
        return fail(ExitCode::Failed, exception.what());
    }
}

} // namespace devhost::host
