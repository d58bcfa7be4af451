#include "host/logcommand.h"

#include "host/directorywatch.h"
#include "host/loglocation.h"
#include "host/logreader.h"
#include "host/printer.h"
#include "host/stopsignal.h"
#include "host/systemtext.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <span>

namespace devhost::host {

namespace {

// A notification may be missing on some file systems, and a rotation that was met half-way shows no
// further change when it is finished.
constexpr unsigned long recheckMs = 1000;

void print(Printer& printer, std::span<const std::string> lines)
{
    for (const auto& line : lines)
        printer.result(line, {{"line", line}});
}

} // namespace

ExitCode showLog(const Context& context, const std::filesystem::path& file, LogMode mode, std::optional<unsigned> lines)
{
    const auto path = file.empty() ? logLocation() : std::filesystem::absolute(file);
    if (mode == LogMode::Print && !exists(path))
        throw CommandError(ExitCode::Failed, "there is no log " + toText(path));
    // Watching begins before reading, so that nothing written in between goes unnoticed.
    DirectoryWatch watch(path.parent_path());
    LogReader reader(path);
    reader.rewind();
    const auto all = reader.read();
    const auto shown = std::min<std::size_t>(all.size(), lines.value_or(all.size()));
    print(context.printer, std::span(all).last(shown));
    while (mode == LogMode::Follow && watch.wait(context.stop, recheckMs) != DirectoryWatch::Result::Stopped)
        print(context.printer, reader.read());
    return ExitCode::Done;
}

} // namespace devhost::host
