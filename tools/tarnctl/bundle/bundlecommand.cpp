#include "tarnctl/bundle/bundlecommand.h"

#include "logreading/logreader.h"
#include "tarnctl/bundle/cabinet.h"
#include "tarnctl/bundle/redact.h"
#include "tarnctl/bundle/registrytext.h"
#include "tarnctl/commands.h"
#include "vxtl/str.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <windows.h>

namespace tarnctl::bundle {

namespace {

struct Options {
    std::string file;
};

/// Another command of this program, and the name that its output gets.
struct Part {
    const char* name;
    std::vector<std::string> arguments;
    std::filesystem::path source = {}; ///< what it reads, when that may be missing
};

struct Answer {
    std::string text;
    bool isComplete;
};

std::vector<Part> parts()
{
    const auto agentLog = logreading::logLocation().replace_filename(L"tarnag.log");
    return {
        {"health.txt", {"health"}},
        {"health.jsonl", {"--json", "health"}},
        {"why-scan.txt", {"why", "scan", "--last", "100"}},
        {"why-install.txt", {"why", "install", "--last", "100"}},
        {"why-reboot.txt", {"why", "reboot", "--last", "100"}},
        {"keys.jsonl", {"--json", "keys"}},
        {"codes.txt", {"codes"}},
        {"tarnhd.log", {"log", "--colour", "never"}},
        {"tarnag.log", {"log", "--colour", "never", "--file", vx::str::toUtf8(agentLog.native())}, agentLog},
    };
}

/// An agent that never ran has no log, and nothing of it could not be read.
bool isMissing(const std::filesystem::path& source)
{
    std::error_code error;
    return !source.empty() && std::filesystem::status(source, error).type() == std::filesystem::file_type::not_found;
}

Answer answerOf(const Part& part)
{
    std::ostringstream output;
    const auto code = runCommandLine(part.arguments, allCommands(), output, output);
    return {output.str(), code != static_cast<int>(ExitCode::Unreadable) || isMissing(part.source)};
}

std::string redactLines(const std::string& text)
{
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        (result += redact(line)) += '\n';
    return result;
}

std::string versionsText()
{
    OSVERSIONINFOW system{};
    system.dwOSVersionInfoSize = sizeof(system);
    using GetVersionCall = LONG(WINAPI*)(OSVERSIONINFOW*);
    // The documented function tells old programs of an old system.
    const auto call = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion");
    if (call)
        reinterpret_cast<GetVersionCall>(reinterpret_cast<void*>(call))(&system);
    std::ostringstream text;
    text << "tarnctl " << TARNCTL_VERSION << "\nWindows " << system.dwMajorVersion << '.' << system.dwMinorVersion
         << '.' << system.dwBuildNumber
         << "\nThe plug-in's file and version stand in tarnhd.log, behind \"LOGGING STARTED\".\n";
    return text.str();
}

void report(const Context& context, const std::string& file, const std::vector<std::string>& incomplete)
{
    if (context.json) {
        context.output << nlohmann::ordered_json{{"file", file}, {"incomplete", incomplete}}.dump() << '\n';
        return;
    }
    context.output << "wrote " << file << "; passwords are hidden in it\n";
    for (const auto& name : incomplete)
        context.output << name << " in it says what could not be read\n";
}

ExitCode makeBundle(const Context& context, const Options& options)
{
    Cabinet cabinet(std::filesystem::absolute(vx::str::fromUtf8(options.file)));
    std::vector<std::string> incomplete;
    for (const auto& part : parts()) {
        const auto answer = answerOf(part);
        cabinet.add(part.name, redactLines(answer.text));
        if (!answer.isComplete)
            incomplete.emplace_back(part.name);
    }
    cabinet.add("registry.txt", redactLines(registryText()));
    cabinet.add("versions.txt", versionsText());
    cabinet.finish();
    report(context, options.file, incomplete);
    return incomplete.empty() ? ExitCode::Healthy : ExitCode::Unreadable;
}

} // namespace

void addBundleCommand(CLI::App& app, const Choose& choose)
{
    auto* command =
        app.add_subcommand("bundle", "write logs, health, reasons, keys and registry values into one cabinet");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->file, "the cabinet, NAME.cab")->required();
    command->callback([=] { choose([options](const Context& context) { return makeBundle(context, *options); }); });
}

} // namespace tarnctl::bundle
