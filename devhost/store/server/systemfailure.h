#pragma once

#include "store/protocol/errorcode.h"

#include <string>

namespace devhost::store {

/// Throws StoreException with the text of the system's error code: AccessDenied for 5, else Unknown.
[[noreturn]] void throwSystemFailure(unsigned long error, const std::wstring& subject);

} // namespace devhost::store
