#include "tarnctl/why/whycommand.h"

#include "logreading/logreader.h"
#include "tarnctl/health/gatherfacts.h"
#include "tarnctl/unread.h"
#include "tarnctl/why/conditions.h"
#include "tarnctl/why/explanation.h"
#include "vxtl/scopeexit.h"
#include "vxtl/str.h"

#include <map>
#include <memory>
#include <optional>

namespace tarnctl::why {

namespace {

const std::map<std::string, Subject> subjects{
    {"scan", Subject::Scan}, {"install", Subject::Install}, {"reboot", Subject::Reboot}};

struct Options {
    Subject subject = Subject::Scan;
    std::size_t last = 5;
    std::string file;
};

ExitCode tellWhy(const Context& context, const Options& options)
{
    const auto path =
        options.file.empty() ? logreading::logLocation() : std::filesystem::absolute(vx::str::fromUtf8(options.file));
    logreading::Story story;
    const auto sink = [&](std::string_view line) {
        if (const auto record = logreading::parseRecord(line))
            story.take(*record);
    };
    Unread unread;
    const vx::ScopeExit saying([&] { unread.say(context.errors); });
    logreading::LogReader reader(path, [&](const auto& exception) { unread.take(exception); });
    const bool isThere = reader.rewind();
    if (!isThere && unread.any())
        return ExitCode::Unreadable;
    if (!options.file.empty() && !isThere)
        throw CommandError(ExitCode::Unreadable, "there is no log " + vx::str::toUtf8Lossy(path.native()));
    reader.read(sink);
    reader.finish(sink);
    const auto explanations = explain(story, options.subject, options.last);
    // Of a log from elsewhere this machine tells nothing.
    const auto facts = options.file.empty() ? std::optional(health::gatherFacts()) : std::nullopt;
    const auto now = facts ? conditions(*facts, options.subject) : std::vector<std::string>();
    for (const auto& [lines, object] : explanations)
        if (context.json)
            context.output << object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
        else
            for (const auto& line : lines)
                context.output << line << '\n';
    if (explanations.empty() && !context.json)
        context.output << (isThere ? "the log tells of none\n" : "there is no log\n");
    for (const auto& line : now)
        if (context.json)
            context.output << nlohmann::ordered_json{{"now", line}}.dump(
                                  -1, ' ', false, nlohmann::json::error_handler_t::replace)
                           << '\n';
        else
            context.output << "now: " << line << '\n';
    const bool isComplete = isThere && !unread.any() && (!facts || facts->storeTrouble.empty());
    return isComplete ? ExitCode::Healthy : ExitCode::Unreadable;
}

} // namespace

void addWhyCommand(CLI::App& app, const Choose& choose)
{
    auto* command =
        app.add_subcommand("why", "tell who asked for scans, installations or reboots, and what came of it");
    const auto options = std::make_shared<Options>();
    command->add_option("subject", options->subject, "scan, install or reboot")
        ->required()
        ->transform(CLI::CheckedTransformer(subjects));
    command->add_option("--last", options->last, "how many")->capture_default_str();
    command->add_option("--file", options->file, "another log; its rotated files are found beside it");
    command->callback([=] { choose([options](const Context& context) { return tellWhy(context, *options); }); });
}

} // namespace tarnctl::why
