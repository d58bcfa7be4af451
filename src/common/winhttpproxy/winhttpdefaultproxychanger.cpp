#include "common/winhttpproxy/winhttpdefaultproxychanger.h"

#include "logging/logstream.h"
#include "vxtl/exception.h"
#include "vxtl/guarded.h"

#include <utility>

namespace vx::tarn::common {

WinHTTPDefaultProxyChanger::WinHTTPDefaultProxyChanger(
    const ProxyConfiguration& configuration, std::shared_ptr<IWinHttpProxyChanger> implementation)
    : m_implementation(std::move(implementation))
{
    if (!m_implementation->getProxy(m_saved))
        VX_THROW(BaseException, L"Failed to get proxy configuration.");
    if (!m_implementation->setProxy(configuration))
        VX_THROW(BaseException, L"Failed to set proxy configuration.");
}

WinHTTPDefaultProxyChanger::~WinHTTPDefaultProxyChanger()
{
    if (!guarded([&] { return m_implementation->setProxy(m_saved); }))
        logging::LogStream(logging::Level::Error) << "Failed to restore proxy configuration.";
}

} // namespace vx::tarn::common
