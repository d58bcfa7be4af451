#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace vx::alerts {

/// Sends alerts to whoever looks after the computer.
class AlertApiImpl {
public:
    virtual ~AlertApiImpl() = default;
    /// The type, in UTF-8, names the alert to the alert library; the data go with it. Returns when the library has
    /// taken them.
    virtual void sendAlert(const std::string& alertType, const nlohmann::json& data) = 0;
};

} // namespace vx::alerts
