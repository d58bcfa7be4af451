#pragma once

#include "alert-api/alertapiimpl.h"
#include "alert-api/alertlibrary.h"

#include <functional>

namespace vx::alerts {

/// Alerts through the host's library. Keeps nothing between calls; any thread that the library takes calls from.
class VxAlertApi : public AlertApiImpl {
public:
    using LoadLibrary = std::function<delayload::LoadResult(AlertLibrary& library)>;

    /// Finds the library and binds it. Throws BaseException.
    explicit VxAlertApi(const LoadLibrary& loadLibrary = loadAlertLibrary);
    ~VxAlertApi() override;
    VxAlertApi(const VxAlertApi&) = delete;
    VxAlertApi& operator=(const VxAlertApi&) = delete;

    /// Blocks as long as the library does. Throws VxAlertException with the library's code, once the alert was sent a
    /// second time for the text of its error: that one may arrive all the same. Throws the JSON library's type error
    /// for data whose texts are not UTF-8.
    void sendAlert(const std::string& alertType, const nlohmann::json& data) override;

private:
    AlertLibrary m_library{};
};

} // namespace vx::alerts
