#pragma once

#include "common/settings/hostsettings.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "store/protocol/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace devhost::host {

/// The type that a command line or a script names: "bool", "int32", "int64", "string", "json" (also
/// "object"); nothing for any other text.
std::optional<store::Type> typeFromName(std::string_view name);

/// The type of a key that plug-in and agent use, so that nobody has to give it by hand. Nothing for any other key
/// and for one whose type is left to its users. Any thread.
std::optional<store::Type> typeOfKey(std::string_view key);

/// A row's key as the store's client takes it.
std::string keyOf(const vx::tarn::KeyRow& row);

/// The product's rows, for their keys only.
namespace keys {
inline const vx::tarn::TarnpatchSettings settings{nullptr};
inline const vx::tarn::TarnpatchStatus status{nullptr};
inline const vx::tarn::HostSettings host{nullptr};
} // namespace keys

} // namespace devhost::host
