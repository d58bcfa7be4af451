#include "tarnctl/why/whycommand.h"

#include "logreading/logreader.h"
#include "tarnctl/health/gatherfacts.h"
#include "tarnctl/why/conditions.h"
#include "tarnctl/why/explanation.h"
#include "vxtl/str.h"

#include <map>
#include <memory>

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
    if (!options.file.empty() && !exists(path))
        throw CommandError(ExitCode::Unreadable, "there is no log " + vx::str::toUtf8Lossy(path.native()));
    logreading::Story story;
    const auto sink = [&](std::string_view line) {
        if (const auto record = logreading::parseRecord(line))
            story.take(*record);
    };
    logreading::LogReader reader(path);
    reader.rewind();
    reader.read(sink);
    reader.finish(sink);
    const auto explanations = explain(story, options.subject, options.last);
    const auto facts = options.file.empty() ? health::gatherFacts() : health::Facts();
    const auto now = options.file.empty() ? conditions(facts, options.subject) : std::vector<std::string>();
    for (const auto& [lines, object] : explanations)
        if (context.json)
            context.output << object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
        else
            for (const auto& line : lines)
                context.output << line << '\n';
    if (explanations.empty() && !context.json)
        context.output << "the log tells of none\n";
    for (const auto& line : now)
        if (context.json)
            context.output << nlohmann::ordered_json{{"now", line}}.dump(
                                  -1, ' ', false, nlohmann::json::error_handler_t::replace)
                           << '\n';
        else
            context.output << "now: " << line << '\n';
    return facts.storeTrouble.empty() ? ExitCode::Healthy : ExitCode::Unreadable;
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
