#include "host/commands.h"
#include "host/printer.h"
#include "host/stopsignal.h"
#include "host/systemtext.h"
#include "logreading/directorywatch.h"
#include "logreading/logreader.h"
#include "vxtl/str.h"

#include <deque>
#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

// A notification may be missing on some file systems, and a rotation that was met half-way shows no
// further change when it is finished.
constexpr unsigned long recheckMs = 1000;

struct LogOptions {
    bool follow = false;
    std::optional<unsigned> lines;
    std::string file;
};

void print(Printer& printer, std::string_view line)
{
    printer.result(line, {{"line", line}});
}

/// Prints what is there, or the last lines of it.
void printBeginning(Printer& printer, logreading::LogReader& reader, std::optional<unsigned> lines)
{
    if (!lines)
        return reader.read([&](std::string_view line) { print(printer, line); });
    std::deque<std::string> last;
    reader.read([&](std::string_view line) {
        last.emplace_back(line);
        if (last.size() > *lines)
            last.pop_front();
    });
    for (const auto& line : last)
        print(printer, line);
}

ExitCode showLog(const Context& context, const LogOptions& options)
{
    const auto path =
        options.file.empty() ? logreading::logLocation() : std::filesystem::absolute(vx::str::fromUtf8(options.file));
    // Watching begins before reading, so that nothing written in between goes unnoticed.
    logreading::DirectoryWatch watch(path.parent_path());
    logreading::LogReader reader(path);
    if (!reader.rewind() && !options.follow)
        throw CommandError(ExitCode::Failed, "there is no log " + toText(path));
    printBeginning(context.printer, reader, options.lines);
    while (
        options.follow && watch.wait(context.stop.handle(), recheckMs) != logreading::DirectoryWatch::Result::Stopped)
        reader.read([&](std::string_view line) { print(context.printer, line); });
    return ExitCode::Done;
}

} // namespace

void logCommands(Commands& commands)
{
    const auto [log, options] = commands.add("log", "print the plug-in's log", showLog);
    log->add_flag("-f,--follow", options.follow, "go on with new lines until Ctrl-C");
    log->add_option("-n,--lines", options.lines, "begin with the last N lines only");
    log->add_option("--file", options.file, "another log file");
}

} // namespace devhost::host
