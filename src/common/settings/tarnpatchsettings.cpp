#include "common/settings/tarnpatchsettings.h"

namespace vx::tarn {

// Here, because each place that had them inline would carry the whole table.
TarnpatchSettings::TarnpatchSettings(KeyStore store) : SettingsSection(std::move(store)) {}
TarnpatchSettings::TarnpatchSettings(const TarnpatchSettings&) = default;
TarnpatchSettings::~TarnpatchSettings() = default;

} // namespace vx::tarn
