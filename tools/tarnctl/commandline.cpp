#include "tarnctl/commandline.h"

#include "tarnctl/health/gather.h"

#include <ostream>

namespace tarnctl {

namespace {

constexpr auto description =
    R"(tarnctl: looks at the patch management plug-in of this machine, and explains. It changes nothing: it writes no key,
holds no lock of the plug-in, and is in nobody's way.)";

std::string exitCodes()
{
    std::string text = "Exit codes:";
    for (int code = 0; const char* words = wordsOf(static_cast<ExitCode>(code)); ++code)
        text += "\n  " + std::to_string(code) + "  " + words;
    return text;
}

} // namespace

int runCommandLine(const std::vector<std::string>& arguments, const std::vector<AddCommand>& commands,
    std::ostream& output, std::ostream& errors)
{
    const auto fail = [&](ExitCode code, const std::string& line) {
        output.flush();
        errors << "tarnctl: " << line << std::endl;
        return static_cast<int>(code);
    };
    CLI::App app(description, "tarnctl");
    Context context{output, errors};
    Action chosen;
    app.footer(exitCodes());
    app.add_flag("--json", context.json, "print one JSON object per line");
    app.require_subcommand(0, 1);
    app.fallthrough();
    for (const auto add : commands)
        add(app, [&](Action action) { chosen = std::move(action); });
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        if (!chosen)
            throw CommandError(ExitCode::BadUsage, "a command is required: see tarnctl --help");
        const auto code = chosen(context);
        output.flush();
        return static_cast<int>(code);
    } catch (const CLI::ParseError& error) {
        return error.get_exit_code() == 0 ? app.exit(error, output) : fail(ExitCode::BadUsage, error.what());
    } catch (const CommandError& error) {
        return fail(error.code(), error.what());
    } catch (const std::exception& exception) {
        return fail(ExitCode::Unreadable, health::textOf(exception));
    }
}

} // namespace tarnctl
