#include "host/commands.h"
#include "host/directorywatch.h"
#include "host/logreader.h"
#include "host/printer.h"
#include "host/stopsignal.h"
#include "host/systemtext.h"
#include "vxtl/str.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <span>

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

void print(Printer& printer, std::span<const std::string> lines)
{
    for (const auto& line : lines)
        printer.result(line, {{"line", line}});
}

ExitCode showLog(const Context& context, const LogOptions& options)
{
    const auto path = options.file.empty() ? logLocation() : std::filesystem::absolute(vx::str::fromUtf8(options.file));
    if (!options.follow && !exists(path))
        throw CommandError(ExitCode::Failed, "there is no log " + toText(path));
    // Watching begins before reading, so that nothing written in between goes unnoticed.
    DirectoryWatch watch(path.parent_path());
    LogReader reader(path);
    reader.rewind();
    const auto all = reader.read();
    const auto shown = std::min<std::size_t>(all.size(), options.lines.value_or(all.size()));
    print(context.printer, std::span(all).last(shown));
    while (options.follow && watch.wait(context.stop, recheckMs) != DirectoryWatch::Result::Stopped)
        print(context.printer, reader.read());
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
