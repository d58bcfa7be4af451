#pragma once

#include "common/patches/patchinfo.h"

#include <memory>
#include <vector>

namespace vx::settings {
class Settings;
}

namespace devhost::agent {

/// The installation log in the store; the agent is its only writer. Readers take a patch's first entry. One thread.
class InstallationLog {
public:
    explicit InstallationLog(std::shared_ptr<vx::settings::Settings> settings) : m_settings(std::move(settings)) {}

    /// Puts the patches into a state, stamped with the present second, in one write: a patch's first entry is
    /// replaced where it stands, new entries go to the front. What else the log holds stays as it is.
    void record(const std::vector<vx::tarn::common::PatchInfo>& patches, const vx::tarn::common::PatchStatus& status,
        vx::tarn::InstallationResultItem result) const;

private:
    std::shared_ptr<vx::settings::Settings> m_settings;
};

} // namespace devhost::agent
