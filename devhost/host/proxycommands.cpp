#include "common/factory/commonfactory.h"
#include "host/commands.h"
#include "host/printer.h"
#include "ipc/instance.h"
#include "meridia-settings/qrlmeridiaerror.h"
#include "plannedway/plannedway.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

struct ProxyOptions {
    std::string url;
};

std::shared_ptr<vx::settings::Settings> openSettings(const Context& context)
{
    ipc::exportInstance(context.instance);
    try {
        return vx::tarn::common::CommonFactory().createSettings();
    } catch (const vx::QrlMeridiaException& exception) {
        throw CommandError(ExitCode::NotRunning, exception.what());
    }
}

ExitCode showWay(const Context& context, const ProxyOptions& options)
{
    const auto settings = openSettings(context);
    try {
        const auto way = plannedway::planWay(settings, vx::str::fromUtf8(options.url));
        context.printer.result(plannedway::describe(way), plannedway::toJson(way));
    } catch (const std::logic_error& error) {
        throw CommandError(ExitCode::Failed, std::string("a download can't begin: ") + error.what());
    }
    return ExitCode::Done;
}

} // namespace

void proxyCommands(Commands& commands)
{
    const auto [proxy, options] =
        commands.add("proxy", "say which way a download would go, without downloading", showWay);
    proxy->add_option("URL", options.url)->required();
}

} // namespace devhost::host
