#pragma once

#include "common/settings/settingssection.h"

namespace vx::tarn {

/// Keys of other components that the handler only reads. Otherwise as TarnpatchSettings.
class HostSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// Seconds since the Unix epoch; 0 until the host's store has been updated once.
    std::int64_t lastSuccessfulUpdateTimestamp() const;
    /// The proxy that the update channel uses; empty when there is none.
    std::wstring currentProxy() const;
};

} // namespace vx::tarn
