#include "common/internetproxy/createproxy.h"

#include "common/internetproxy/nointernetproxy.h"
#include "common/internetproxy/productinternetproxy.h"
#include "common/internetproxy/userdefinedinternetproxy.h"
#include "common/settings/tarnpatchsettings.h"
#include "logging/logstream.h"

#include <utility>

namespace vx::tarn::common {

std::shared_ptr<InternetProxy> createProxy(std::shared_ptr<settings::Settings> settings,
    std::shared_ptr<ISessionDriver> sessions, std::shared_ptr<IAutoProxyDriver> autoProxy)
{
    using logging::Level;
    using logging::LogStream;
    const CommunicationSettings communication(settings);
    const bool ignoreCertErrors = communication.ignoreRevocationServerOfflineError();
    switch (communication.useHttpProxy()) {
    case UseHttpProxyItem::FromProductConfiguration:
        LogStream(Level::Info) << "Create product defined internet proxy.";
        return std::make_shared<ProductInternetProxy>(
            std::move(settings), std::move(sessions), std::move(autoProxy), ignoreCertErrors);
    case UseHttpProxyItem::UserDefined:
        LogStream(Level::Info) << "Create user defined internet proxy.";
        return std::make_shared<UserDefinedInternetProxy>(std::move(settings), std::move(sessions), ignoreCertErrors);
    case UseHttpProxyItem::No: break;
    }
    LogStream(Level::Info) << "Create stub internet proxy object (without proxy)";
    return std::make_shared<NoInternetProxy>(std::move(sessions), ignoreCertErrors);
}

} // namespace vx::tarn::common
