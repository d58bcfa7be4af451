#pragma once

#include "common/settings/keykinds.h"

namespace vx::tarn {

/// Keys of other components that the handler only reads. Otherwise as TarnpatchSettings.
class HostSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// 0 until the host's store has been updated once.
    Read<Timestamp> lastSuccessfulUpdateTimestamp{
        m_store, L"status.windows.meridia.last_successful_update_timestamp", 0};
    /// The proxy that the update channel uses; empty when there is none.
    Read<Text> currentProxy{m_store, L"windows.gorse2.current_proxy", ""};
};

} // namespace vx::tarn
