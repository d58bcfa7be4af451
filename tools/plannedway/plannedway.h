#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace vx::settings {
class Settings;
}

namespace plannedway {

/// How a download would reach its server.
struct PlannedWay {
    std::string strategy;              ///< what the setting says
    std::wstring url;                  ///< that is asked for, by way of the management server or not; no password
    std::optional<std::wstring> proxy; ///< address, without credentials; nothing: as the system is configured to go
    std::string fault;                 ///< why the proxy can't be reached by this address; empty for none known
    bool hasUser = false;
    bool hasPassword = false;
    bool ignoresCertificateErrors = false;
};

/// Lets the product decide by the settings, as at the start of a download, and opens nothing. May ask the network for
/// its proxy, which blocks. Throws std::logic_error for settings that the product can't use, and what reading them
/// throws.
PlannedWay planWay(const std::shared_ptr<vx::settings::Settings>& settings, const std::wstring& url);

/// For people, and the same for programs.
std::string describe(const PlannedWay& way);
nlohmann::json toJson(const PlannedWay& way);

} // namespace plannedway
