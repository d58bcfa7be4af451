#include "alert-api/vxalertapi.h"

#include "logging/logstream.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace vx::alerts {

VxAlertApi::VxAlertApi(const LoadLibrary& loadLibrary)
{
    VX_LOG_SCOPE();
    if (loadLibrary(m_library).status != delayload::LoadStatus::Success)
        VX_THROW(BaseException, L"Cannot load Alert API library");
}

VxAlertApi::~VxAlertApi()
{
    VX_LOG_SCOPE();
}

void VxAlertApi::sendAlert(const std::string& alertType, const nlohmann::json& data)
{
    VX_LOG_SCOPE();
    const std::string alertData = data.dump();
    VX_LOG_VALUES(alertType, alertData);
    const auto send = [&] { return m_library.sendAlert(alertType.c_str(), alertData.c_str()); };
    const VxAlertError_enum code = send();
    if (code == VxAlertError_enum::Success)
        return;
    const wchar_t* const text = m_library.errorAsString(send());
    const std::wstring reason = (text ? text : L"") + (L", Alert: " + str::fromUtf8Lossy(alertType));
    VX_THROW_FROM(VxAlertException, vxScopeName, code, reason);
}

} // namespace vx::alerts
