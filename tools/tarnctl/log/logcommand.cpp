#include "tarnctl/log/logcommand.h"

#include "logreading/directorywatch.h"
#include "logreading/logreader.h"
#include "tarnctl/log/console.h"
#include "tarnctl/log/filter.h"
#include "tarnctl/log/newfile.h"
#include "tarnctl/log/pageoutput.h"
#include "tarnctl/log/route.h"
#include "tarnctl/log/textoutput.h"
#include "tarnctl/log/traceoutput.h"
#include "tarnctl/unread.h"
#include "vxtl/scopeexit.h"
#include "vxtl/str.h"

#include <charconv>
#include <memory>

namespace tarnctl::log {

using logreading::DirectoryWatch;
using logreading::LogReader;

namespace {

// A notification may be missing on some file systems, and a rotation that was met half-way shows no further change
// when it is finished.
constexpr unsigned long recheckMs = 1000;

struct Options {
    bool follow = false;
    std::string file;
    std::string since;
    std::string level;
    std::string thread;
    std::string pattern;
    std::string page;
    std::string trace;
    std::string colours = "auto";
};

CommandError badUsage(const std::string& line)
{
    return {ExitCode::BadUsage, line};
}

std::uint16_t parseId(std::string_view digits)
{
    std::uint16_t id = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id, 16);
    if (error != std::errc() || end != digits.data() + digits.size())
        throw badUsage("--thread takes a thread's id as it stands in the log, for example 0384 or 0123.0384");
    return id;
}

/// "0384", or "0123.0384" with its process.
void setThread(Wanted& wanted, std::string_view text)
{
    const auto point = text.find('.');
    if (point != std::string_view::npos)
        wanted.process = parseId(text.substr(0, point));
    wanted.thread = parseId(text.substr(point + 1));
}

Pattern parsePattern(const std::string& text)
{
    try {
        return Pattern(text);
    } catch (const std::regex_error& error) {
        throw badUsage("--grep: " + std::string(error.what()));
    }
}

Wanted wantedBy(const Options& options)
{
    Wanted wanted;
    if (!options.since.empty() && !(wanted.since = parseSince(options.since, localNow())))
        throw badUsage("--since takes a time as in the log, or 90s, 15m, 2h, 3d");
    if (!options.level.empty())
        wanted.level = logreading::levelOf(options.level);
    if (!options.thread.empty())
        setThread(wanted, options.thread);
    if (!options.pattern.empty())
        wanted.pattern = parsePattern(options.pattern);
    return wanted;
}

/// What is written instead of the program's output; null for that.
std::unique_ptr<NewFile> newFileOf(const Options& options)
{
    const auto& name = options.page.empty() ? options.trace : options.page;
    return name.empty() ? nullptr : std::make_unique<NewFile>(name);
}

std::unique_ptr<Output> makeOutput(const Options& options, const Context& context, std::ostream& stream)
{
    if (!options.page.empty())
        return std::make_unique<PageOutput>(stream);
    if (!options.trace.empty())
        return std::make_unique<TraceOutput>(stream);
    if (context.json)
        return std::make_unique<JsonOutput>(stream);
    const bool coloured = options.colours == "always" || (options.colours == "auto" && isColourTerminal());
    return std::make_unique<TextOutput>(stream, coloured ? TextOutput::Colours::ByLevel : TextOutput::Colours::None);
}

ExitCode printLog(const Context& context, const Options& options, const std::filesystem::path& path)
{
    Filter filter(wantedBy(options));
    Unread unread;
    const vx::ScopeExit saying([&] { unread.say(context.errors); });
    LogReader reader(path, [&](const auto& exception) { unread.take(exception); });
    if (!reader.rewind()) {
        if (unread.any())
            return ExitCode::Unreadable;
        throw CommandError(ExitCode::Unreadable, "there is no log " + vx::str::toUtf8Lossy(path.native()));
    }
    const auto file = newFileOf(options);
    auto& stream = file ? file->stream() : context.output;
    const auto output = makeOutput(options, context, stream);
    const auto sink = route(filter, *output);
    reader.read(sink);
    reader.finish(sink);
    output->end();
    if (!stream)
        throw CommandError(ExitCode::Unreadable, "the output cannot be written");
    if (file)
        file->keep();
    return unread.any() ? ExitCode::Unreadable : ExitCode::Healthy;
}

/// A file that can't be read now may be readable at the next look: a scanner of viruses holds it for a moment.
ExitCode followLog(const Context& context, const Options& options, const std::filesystem::path& path)
{
    Filter filter(wantedBy(options));
    Unread unread;
    LogReader reader(path, [&](const auto& exception) { unread.take(exception); });
    // Watching begins before reading, so that nothing written in between goes unnoticed.
    DirectoryWatch watch(path.parent_path());
    const auto output = makeOutput(options, context, context.output);
    const auto sink = route(filter, *output);
    // Whoever reads a pipe may have had enough.
    for (bool isThere = false; context.output; watch.wait(nullptr, recheckMs)) {
        try {
            isThere = isThere || reader.rewind();
            if (isThere)
                reader.read(sink);
        } catch (const vx::Win32Exception& exception) {
            unread.take(exception);
        }
        output->flush();
        unread.say(context.errors);
    }
    throw CommandError(ExitCode::Unreadable, "the output cannot be written");
}

ExitCode showLog(const Context& context, const Options& options)
{
    const auto path =
        options.file.empty() ? logreading::logLocation() : std::filesystem::absolute(vx::str::fromUtf8(options.file));
    return options.follow ? followLog(context, options, path) : printLog(context, options, path);
}

} // namespace

void addLogCommand(CLI::App& app, const Choose& choose)
{
    auto* command = app.add_subcommand("log", "print the plug-in's log, all its files in order");
    const auto options = std::make_shared<Options>();
    auto* follow = command->add_flag("-f,--follow", options->follow, "go on with new lines until Ctrl-C");
    command->add_option("--since", options->since, "from this time on: 2026-11-22 04:55, or 90s, 15m, 2h, 3d ago");
    command->add_option("--level", options->level, "this level and all that are more severe")
        ->check(CLI::IsMember({"fatal", "error", "warning", "info", "debug", "verbose"}));
    command->add_option("--thread", options->thread, "of this thread, by its id in the log");
    command->add_option("--grep", options->pattern, "lines that match this regular expression");
    auto* page = command->add_option("--html", options->page, "write a page with findings, time line and lines");
    auto* trace = command->add_option("--trace", options->trace, "write Trace Event JSON for trace viewers");
    command->add_option("--file", options->file, "another log; its rotated files are found beside it");
    command->add_option("--colour", options->colours, "colours by level")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->capture_default_str();
    page->excludes(trace)->excludes(follow);
    trace->excludes(follow);
    command->callback([=] { choose([options](const Context& context) { return showLog(context, *options); }); });
}

} // namespace tarnctl::log
