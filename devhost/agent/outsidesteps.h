#pragma once

#include "agent/step.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>

namespace vx::settings {
class Settings;
}
namespace vx::tarn::common {
class CommonFactory;
class WinHTTPDefaultProxyChanger;
} // namespace vx::tarn::common

namespace devhost::agent {

/// Carries out one run's steps that deal with others: servers, the user, whoever looks after the computer, other
/// processes, all the machine's programs. For real, with the classes that the real agent has from the factory. One
/// thread. Operations block as long as these classes do, and throw what they throw. No result holds a password.
class OutsideSteps {
public:
    using MakeSettings = std::function<std::shared_ptr<vx::settings::Settings>()>;

    /// `makeSettings` gives the factory its settings, too; it is called by what needs them. `factory` outlives this
    /// object. `folder` is where relative paths begin.
    OutsideSteps(vx::tarn::common::CommonFactory& factory, std::filesystem::path folder, MakeSettings makeSettings)
        : m_factory(factory), m_folder(std::move(folder)), m_makeSettings(std::move(makeSettings))
    {}

    /// {"url", "exit_code", "status", "error", "headers"}: the agent's, the server's and the system's number.
    nlohmann::json perform(const DownloadStep& step);
    /// "added", "failed" or "already in storage".
    nlohmann::json perform(const CertificateStep& step);
    /// True.
    nlohmann::json perform(const FlyerStep& step) const;
    /// True.
    nlohmann::json perform(const AlertStep& step) const;
    /// The number that the client gives.
    nlohmann::json perform(const IpcStep& step) const;
    /// True. Holds until the next such step or the end of this object, by an exception as well.
    nlohmann::json perform(const WinHttpProxyStep& step);

    /// The exit code of the agent when the last download or certificate failed.
    std::optional<int> failure() const { return m_failure; }

private:
    vx::tarn::common::CommonFactory& m_factory;
    const std::filesystem::path m_folder;
    const MakeSettings m_makeSettings;
    std::shared_ptr<vx::tarn::common::WinHTTPDefaultProxyChanger> m_proxyChanger; ///< empty: the machine's own proxy
    std::optional<int> m_failure;
};

} // namespace devhost::agent
