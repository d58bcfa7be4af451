#include "common/factory/commonfactory.h"
#include "host/commands.h"
#include "host/plannedway.h"
#include "host/printer.h"
#include "ipc/instance.h"
#include "meridia-settings/qrlmeridiaerror.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using vx::str::toUtf8;

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

std::string describe(const PlannedWay& way)
{
    std::string text = toUtf8(way.url) + "\n  use_http_proxy " + way.strategy + ": ";
    text += way.proxy ? "through " + toUtf8(*way.proxy) : "directly, as the system is configured to go";
    if (way.hasUser)
        text += ", with a user name";
    if (way.hasPassword)
        text += ", with a password";
    return text + (way.ignoresCertificateErrors ? "; certificate errors are ignored" : "");
}

ExitCode showWay(const Context& context, const ProxyOptions& options)
{
    const auto settings = openSettings(context);
    try {
        const auto way = planWay(settings, vx::str::fromUtf8(options.url));
        context.printer.result(describe(way),
            {{"url", toUtf8(way.url)}, {"use_http_proxy", way.strategy},
                {"proxy", way.proxy ? nlohmann::json(toUtf8(*way.proxy)) : nlohmann::json()}, {"user", way.hasUser},
                {"password", way.hasPassword}, {"ignores_certificate_errors", way.ignoresCertificateErrors}});
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
