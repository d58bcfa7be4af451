#pragma once

#include "agent/systemstep.h"
#include "common/certificates/wincertstorage.h"
#include "common/downloader/httpheaders.h"
#include "flyer-api/flyerdefinition.h"

#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <variant>

namespace devhost::agent {

// Steps that take arguments, one type for each. Optional numbers: the product's own when they are missing.

struct DownloadStep {
    static constexpr const char* name = "download";
    /// What the URL is asked for: itself, or the management server that the settings name, which is to fetch it.
    enum class Way { AsItStands, ByManagementServer };

    std::wstring url;
    std::wstring target; ///< a path, from the agent's folder on when it is relative
    vx::tarn::common::HttpHeaders headers;
    std::optional<std::int32_t> attempts;
    std::optional<std::int64_t> waitSeconds;
    Way way = Way::AsItStands;
};

/// Puts a certificate into a store of the machine unless the settings remember that this was done.
struct CertificateStep {
    static constexpr const char* name = "certificate";

    vx::tarn::common::CertStoreProtocol store{};
    std::wstring file; ///< as a download's target
};

struct FlyerStep {
    static constexpr const char* name = "flyer";

    vx::flyers::FlyerDefinition definition;
    std::uint32_t argument = 0;
};

struct AlertStep {
    static constexpr const char* name = "alert";

    std::string type;
    std::shared_ptr<const nlohmann::json> data; ///< never null
};

/// Sends a message to whoever serves the channel.
struct IpcStep {
    static constexpr const char* name = "ipc";

    std::string channel;
    std::uint32_t type = 0;
    std::shared_ptr<const nlohmann::json> body; ///< never null
    std::uint32_t owner = 0;
};

/// The machine's default proxy is this one up to the end of the run's steps.
struct WinHttpProxyStep {
    static constexpr const char* name = "winhttpProxy";

    std::wstring proxy;
    std::wstring bypass;
};

/// What a run does beside its task and its values.
using Step = std::variant<SystemStep, DownloadStep, CertificateStep, FlyerStep, AlertStep, IpcStep, WinHttpProxyStep>;

/// As scripts and journals call it.
std::string nameOf(const Step& step);
/// Whether it is the place of the deployment.
bool isDeployment(const Step& step);

} // namespace devhost::agent
