#include "plannedway/plannedway.h"

#include "common/internetproxy/autoproxydriver.h"
#include "common/internetproxy/createproxy.h"
#include "common/internetproxy/downloadurl.h"
#include "common/internetproxy/internetproxy.h"
#include "common/internetproxy/proxyinfo.h"
#include "common/internetproxy/sessiondriver.h"
#include "common/settings/tarnpatchsettings.h"
#include "vxtl/credentials.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace plannedway {

using vx::str::toUtf8Lossy;

namespace {

using namespace vx::tarn::common;

/// Takes down what the product would have of the system, and gives it none.
class Recorder : public ISessionDriver {
public:
    explicit Recorder(PlannedWay& way) : m_way(way) {}

    void* open(const std::wstring&, const std::optional<std::wstring>& proxyAddress) override
    {
        if (proxyAddress) {
            auto proxy = ProxyInfo::parse(*proxyAddress);
            proxy.user.clear();
            m_way.proxy = proxy.toString(ProxyInfo::Passwords::Hidden);
            if (proxy.host.empty())
                m_way.fault = "the proxy's text names no host, or its port is no number";
        }
        return this;
    }
    bool setProxyUser(void*, const std::wstring&) override { return m_way.hasUser = true; }
    bool setProxyPassword(void*, const std::wstring&) override { return m_way.hasPassword = true; }
    std::optional<unsigned long> securityFlags(void*) override { return 0; }
    bool setSecurityFlags(void*, unsigned long) override { return m_way.ignoresCertificateErrors = true; }
    unsigned long lastError() override { return 0; }

private:
    PlannedWay& m_way;
};

} // namespace

PlannedWay planWay(const std::shared_ptr<vx::settings::Settings>& settings, const std::wstring& url)
{
    const vx::tarn::CommunicationSettings communication(settings);
    const auto downloadUrl = buildDownloadUrl(url, communication.hqProxyUrl());
    PlannedWay way;
    way.url = vx::withoutPasswords(downloadUrl);
    way.strategy = vx::toText(communication.useHttpProxy());
    const auto proxy = createProxy(settings, std::make_shared<Recorder>(way), std::make_shared<AutoProxyDriver>());
    proxy->openInternetConnection(L"planned way", downloadUrl);
    // What the system is given does not tell any more that it is a piece of a password.
    if (way.proxy && ProxyInfo::parse(proxy->proxyText()).isHostDoubtful) {
        way.proxy = L"<password>";
        way.fault = "the proxy's password holds an @, and what follows the first one is taken for the host";
    }
    return way;
}

std::string describe(const PlannedWay& way)
{
    std::string text = toUtf8Lossy(way.url) + "\n  use_http_proxy " + way.strategy + ": ";
    text += way.proxy ? "through " + toUtf8Lossy(*way.proxy) : "directly, as the system is configured to go";
    if (way.hasUser)
        text += ", with a user name";
    if (way.hasPassword)
        text += ", with a password";
    if (way.ignoresCertificateErrors)
        text += "; certificate errors are ignored";
    return way.fault.empty() ? text : text + "\n  " + way.fault;
}

nlohmann::json toJson(const PlannedWay& way)
{
    using nlohmann::json;
    return {{"url", toUtf8Lossy(way.url)}, {"use_http_proxy", way.strategy},
        {"proxy", way.proxy ? json(toUtf8Lossy(*way.proxy)) : json()}, {"user", way.hasUser},
        {"password", way.hasPassword}, {"ignores_certificate_errors", way.ignoresCertificateErrors},
        {"fault", way.fault.empty() ? json() : json(way.fault)}};
}

} // namespace plannedway
