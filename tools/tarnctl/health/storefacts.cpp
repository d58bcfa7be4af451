#include "tarnctl/health/storefacts.h"

#include "common/internetproxy/proxyinfo.h"
#include "common/patches/patchrecords.h"
#include "common/settings/hostsettings.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "settings-api/exceptions.h"
#include "tarnctl/health/gather.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

namespace tarnctl::health {

using namespace vx::tarn;
using common::ProxyInfo;

namespace {

/// How many records the list has; throws, with its place, for one that is none.
template <typename Record>
std::size_t countRecords(const nlohmann::json& list)
{
    if (!list.is_array())
        throw WrongError(std::string("the list is no array but a ") + list.type_name());
    for (std::size_t index = 0; index < list.size(); ++index) {
        try {
            common::fromJson<Record>(list[index]);
        } catch (const std::exception& exception) {
            throw WrongError("element " + std::to_string(index) + ": " + exception.what());
        }
    }
    return list.size();
}

/// What the plug-in writes and nobody has to read back. None before its first pass.
std::size_t countPublished(const vx::settings::Settings& store, const wchar_t* key)
{
    try {
        const auto list = store.getJsonValue(key);
        if (!list.is_array())
            throw WrongError(std::string("the list is no array but a ") + list.type_name());
        return list.size();
    } catch (const vx::settings::NotFoundException&) {
        return 0;
    }
}

ProxyFact readProxy(const CommunicationSettings& communication, const HostSettings& host)
{
    const auto use = communication.useHttpProxy();
    if (use == UseHttpProxyItem::No)
        return {};
    const auto text = use == UseHttpProxyItem::UserDefined ? communication.userDefinedProxy() : host.currentProxy();
    if (text.empty())
        return {};
    try {
        const auto proxy = ProxyInfo::parse(text);
        if (!proxy.host.empty())
            return {vx::str::toUtf8(proxy.toString(ProxyInfo::Passwords::Hidden)), {}};
    } catch (const std::out_of_range&) {
        return {{}, "the proxy's port is out of range"};
    }
    return {{}, "the proxy's text names no host, or its port is no number"};
}

} // namespace

void gatherFromStore(const std::shared_ptr<vx::settings::Settings>& store, Facts& facts)
{
    const TarnpatchSettings settings(store);
    const TarnpatchStatus status(store);
    const HostSettings host(store);
    const auto& scan = settings.remoteOperations.scanForUpdates;
    const auto& install = settings.remoteOperations.installUpdates;
    const auto& completion = settings.installation.completion;
    gather(facts.profileTime, [&] { return host.lastSuccessfulUpdateTimestamp(); });
    gather(facts.enabledWanted, [&] { return settings.enabled(); });
    gather(facts.enabledOn, [&] { return status.enabled(); });
    gather(facts.scan, [&] { return Request{scan.start(), scan.ack()}; });
    gather(facts.installation, [&] { return Request{install.start(), install.ack()}; });
    gather(facts.recovery, [&] { return settings.recovery.enabled(); });
    gather(facts.queued, [&] { return countRecords<common::DeploymentItem>(settings.installation.deploymentQueue()); });
    gather(facts.completion, [&] {
        return CompletionWait{completion.wait(), completion.timestamp(), completion.timeout().count()};
    });
    gather(facts.deploymentInProgress, [&] { return settings.installation.inProgress(); });
    gather(facts.lastScan, [&] { return status.scanning.lastScanning.timestamp(); });
    gather(facts.scanPeriodHours,
        [&] { return std::int64_t{settings.scanning.automatic.maximumRescanningPeriod().count()}; });
    gather(facts.missingUpdates,
        [&] { return countRecords<common::MissingUpdate>(status.scanning.lastScanning.missingUpdates()); });
    gather(facts.installationLog,
        [&] { return countRecords<common::InstallationLogEntry>(status.installation.log.entries()); });
    gather(
        facts.publishedPatches, [&] { return countPublished(*store, settings.currentStatus.patchesToInstall.key()); });
    gather(facts.proxy, [&] { return readProxy(settings.communication, host); });
}

void noteStoreTrouble(const std::string& reason, Facts& facts)
{
    const std::string trouble = "the store can't be reached";
    facts.storeTrouble = reason;
    for (auto* fact : {&facts.profileTime, &facts.lastScan, &facts.scanPeriodHours})
        fact->trouble = trouble;
    for (auto* fact : {&facts.enabledWanted, &facts.enabledOn, &facts.deploymentInProgress, &facts.recovery})
        fact->trouble = trouble;
    for (auto* fact : {&facts.scan, &facts.installation})
        fact->trouble = trouble;
    for (auto* fact : {&facts.queued, &facts.missingUpdates, &facts.installationLog, &facts.publishedPatches})
        fact->trouble = trouble;
    facts.completion.trouble = facts.proxy.trouble = trouble;
}

} // namespace tarnctl::health
