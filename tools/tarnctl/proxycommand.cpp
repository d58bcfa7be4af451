#include "tarnctl/proxycommand.h"

#include "meridia-settings/meridiasettingsapi.h"
#include "plannedway/plannedway.h"
#include "settings-api/settings.h"
#include "tarnctl/health/gather.h"
#include "tarnctl/store.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>
#include <ostream>

namespace tarnctl {

namespace {

struct Options {
    std::string url;
};

plannedway::PlannedWay planWay(const std::string& url)
{
    try {
        return plannedway::planWay(std::make_shared<vx::settings::Settings>(openStore()), vx::str::fromUtf8(url));
    } catch (const std::logic_error& error) {
        throw CommandError(ExitCode::Findings, std::string("a download can't begin: ") + error.what());
    } catch (const std::exception& exception) {
        throw CommandError(ExitCode::Unreadable, "the settings can't be read: " + health::textOf(exception));
    }
}

ExitCode showWay(const Context& context, const Options& options)
{
    const auto way = planWay(options.url);
    context.output << (context.json ? plannedway::toJson(way).dump() : plannedway::describe(way)) << '\n';
    return way.fault.empty() ? ExitCode::Healthy : ExitCode::Findings;
}

} // namespace

void addProxyCommand(CLI::App& app, const Choose& choose)
{
    auto* command =
        app.add_subcommand("proxy", "say which way a download would go, without downloading; may ask the network");
    const auto options = std::make_shared<Options>();
    command->add_option("URL", options->url, "what would be downloaded")->required();
    command->callback([=] { choose([options](const Context& context) { return showWay(context, *options); }); });
}

} // namespace tarnctl
