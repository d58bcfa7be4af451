#include "common/settings/hostsettings.h"

namespace vx::tarn {

std::int64_t HostSettings::lastSuccessfulUpdateTimestamp() const
{
    return readInt64(L"status.windows.meridia.last_successful_update_timestamp", 0);
}

std::wstring HostSettings::currentProxy() const
{
    return readString(L"windows.gorse2.current_proxy", L"");
}

} // namespace vx::tarn
