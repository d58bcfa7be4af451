#include "common/settings/tarnpatchstatus.h"

namespace vx::tarn {

// As those of TarnpatchSettings.
TarnpatchStatus::TarnpatchStatus(KeyStore store) : SettingsSection(std::move(store)) {}
TarnpatchStatus::TarnpatchStatus(const TarnpatchStatus&) = default;
TarnpatchStatus::~TarnpatchStatus() = default;

} // namespace vx::tarn
