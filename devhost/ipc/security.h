#pragma once

#include <memory>

namespace devhost::ipc {

/// A native security descriptor that lets the process's own user and administrators in, and nobody else.
/// Throws Win32Exception.
std::shared_ptr<void> ownDescriptor();

} // namespace devhost::ipc
