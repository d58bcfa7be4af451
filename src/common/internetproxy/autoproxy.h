#pragma once

#include <string>

namespace vx::tarn::common {

class IAutoProxyDriver;

/// The proxy that the network names for a URL; empty when it names none, says that this server is reached without one,
/// or does not answer, which is logged. "http://" stands in front of a URL that has no scheme. Blocks on the network.
std::wstring detectProxy(IAutoProxyDriver& driver, const std::wstring& url);

} // namespace vx::tarn::common
