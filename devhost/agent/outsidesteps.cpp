#include "agent/outsidesteps.h"

#include "alert-api/alertapiimpl.h"
#include "common/downloader/idownloader.h"
#include "common/exitstatus/exitstatus.h"
#include "common/factory/commonfactory.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/utils/credentials.h"
#include "common/winhttpproxy/winhttpdefaultproxychanger.h"
#include "flyer-api/flyerapiimpl.h"
#include "ipc-api/ipcclient.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace devhost::agent {

namespace {

using namespace vx::tarn::common;
using nlohmann::json;

std::string shown(const std::wstring& text)
{
    return vx::str::toUtf8(utils::withoutPasswords(text));
}

json shown(const HttpHeaders& headers)
{
    json texts = json::object();
    for (const auto& [name, value] : headers)
        texts[vx::str::toUtf8(name)] = shown(value);
    return texts;
}

std::optional<int> failureOf(const ExitStatus& status)
{
    return status == exitstatus::success ? std::nullopt : std::optional(status.code());
}

} // namespace

json OutsideSteps::perform(const DownloadStep& step)
{
    const auto settings = m_makeSettings();
    const auto url =
        step.way == DownloadStep::Way::AsItStands
            ? step.url
            : m_factory.buildDownloadUrl()(step.url, vx::tarn::CommunicationSettings(settings).hqProxyUrl());
    const auto downloader = m_factory.createDownloader();
    downloader->setAttempts(step.attempts.value_or(downloader->getAttempts()));
    downloader->setWaitSeconds(step.waitSeconds.value_or(downloader->getWaitSeconds()));
    const ExitStatus status = downloader->download(url, (m_folder / step.target).wstring(), step.headers);
    m_failure = failureOf(status);
    return {{"url", shown(url)}, {"exit_code", status.code()}, {"status", downloader->getHttpStatus()},
        {"error", downloader->getLastError()}, {"headers", shown(downloader->getHeaders())}};
}

json OutsideSteps::perform(const CertificateStep& step)
{
    const auto storage = m_factory.createWinCertStorage();
    m_failure.reset();
    if (storage->isAlreadyInStorage())
        return "already in storage";
    if (!storage->addToStorage(step.store, (m_folder / step.file).wstring())) {
        m_failure = failureOf(exitstatus::failedToAddCertificates);
        return "failed";
    }
    storage->setAlreadyInStorage(true);
    return "added";
}

json OutsideSteps::perform(const FlyerStep& step) const
{
    m_factory.createFlyerApi()->showFlyer(step.definition, step.argument);
    return true;
}

json OutsideSteps::perform(const AlertStep& step) const
{
    m_factory.createAlertApi()->sendAlert(step.type, *step.data);
    return true;
}

json OutsideSteps::perform(const IpcStep& step) const
{
    return m_factory.createIpcClient(step.channel, step.owner)->send(step.type, *step.body);
}

json OutsideSteps::perform(const WinHttpProxyStep& step)
{
    // Before the next one is made: that takes what it finds for the machine's own.
    m_proxyChanger.reset();
    m_proxyChanger = m_factory.createProxyChanger(step.proxy, step.bypass);
    return true;
}

} // namespace devhost::agent
