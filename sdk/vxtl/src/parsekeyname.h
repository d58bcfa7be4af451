#pragma once

#include <cstdint>
#include <string>

namespace vx::registry::details {

/// A full key name in two parts.
struct KeyName {
    std::uint32_t root; ///< the system's predefined handle
    std::wstring subkey;
};

/// Cuts at the first backslash; without one the subkey is empty. Root names are the long ones, in capitals.
/// Throws BaseException for any other.
KeyName parseKeyName(const std::wstring& fullName);

} // namespace vx::registry::details
