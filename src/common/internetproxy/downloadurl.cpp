#include "common/internetproxy/downloadurl.h"

#include "common/utils/escapeurl.h"

namespace vx::tarn::common {

std::wstring buildDownloadUrl(const std::wstring& url, const std::wstring& hqUrl)
{
    if (hqUrl.empty())
        return url;
    std::wstring server = hqUrl;
    if (!server.ends_with(L'/'))
        server += L'/';
    if (server.find(L"://") == std::wstring::npos)
        server.insert(0, L"http://");
    return server + L"tarn/update?uri=" + utils::escapeUrl(url);
}

} // namespace vx::tarn::common
