#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Hashing and text forms of bytes. Any thread.

namespace vx::crypto {

/// The 16 bytes of the MD5 hash. Throws BaseException for no bytes, and Win32Exception.
std::vector<std::uint8_t> hash(std::span<const std::uint8_t> source);

/// Base64 in one line; empty for no bytes. Throws Win32Exception.
std::wstring toBase64String(std::span<const std::uint8_t> bytes);

} // namespace vx::crypto
