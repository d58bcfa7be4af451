#pragma once

#include <string>

namespace vx::tarn::common {

class IDownloadDriver;
class IWinInetDriver;

/// What the system makes of the URL before it asks for it. False, logged, when it takes it for none; the URL is then
/// as before.
bool canonicalizeUrl(IWinInetDriver& internet, IDownloadDriver& system, std::wstring& url);

} // namespace vx::tarn::common
