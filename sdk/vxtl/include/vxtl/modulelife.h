#pragma once

/// Whether the module that this code is linked into goes when its host unloads it. Any thread.
namespace vx::modulelife {

/// Keeps the module in memory until the process ends, for addresses that others can't be made to forget.
void keep() noexcept;

/// Says that somebody who was left behind holds a reference to the module; nobody learns when it is given back.
void noteReferenceLeft() noexcept;

/// Whether an unload may leave the module in memory, or may have left it, with all its static state. Once true it
/// stays so: a reference that is gone by now may have outlasted an unload.
bool isKept() noexcept;

} // namespace vx::modulelife
