#pragma once

#include "vxtl/handle.h"

#include <utility>

namespace vx::pipe {

/// An anonymous pipe: the read end, then the write end. Only the ends asked for are inherited by children.
/// Throws Win32Exception "CreatePipe failed" or "SetHandleInformation failed".
std::pair<SharedHandle, SharedHandle> createPipe(bool inheritRead, bool inheritWrite);

} // namespace vx::pipe
