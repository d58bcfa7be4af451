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
        {"tarnag.log", {"log", "--colour", "never", "--file", vx::str::toUtf8(agentLog.native())}},
    };
}

std::string outputOf(const Part& part)
{
    std::ostringstream output;
    runCommandLine(part.arguments, allCommands(), output, output);
    return output.str();
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

ExitCode makeBundle(const Context& context, const Options& options)
{
    Cabinet cabinet(std::filesystem::absolute(vx::str::fromUtf8(options.file)));
    for (const auto& part : parts())
        cabinet.add(part.name, redactLines(outputOf(part)));
    cabinet.add("registry.txt", redactLines(registryText()));
    cabinet.add("versions.txt", versionsText());
    cabinet.finish();
    if (context.json)
        context.output << nlohmann::ordered_json{{"file", options.file}}.dump() << '\n';
    else
        context.output << "wrote " << options.file << "; passwords are hidden in it\n";
    return ExitCode::Healthy;
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
