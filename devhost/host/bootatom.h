#pragma once

namespace devhost::host {

/// Removes the atom by which the plug-in knows that it has already run since the last boot, so that its
/// next start counts as the first. False when there was none. Throws CommandError.
bool forgetBoot();

} // namespace devhost::host
