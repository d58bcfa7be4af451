#pragma once

#include <string>

namespace vx::tarn::common {

/// The URL that fetches `url` by way of the management server; `url` itself when that is not configured. Throws as
/// utils::escapeUrl. Any thread.
std::wstring buildDownloadUrl(const std::wstring& url, const std::wstring& hqUrl);

} // namespace vx::tarn::common
