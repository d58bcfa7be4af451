#pragma once

#include <cstddef>

/// Asks the system what may be done at an address, ahead of doing it.
namespace tools::qrlprobe::memory {

enum class Access { Read, Write, Execute };

/// How many bytes from the address on allow the access, `limit` at most; 0 for null. Another thread may change
/// that at once.
std::size_t extent(const void* address, std::size_t limit, Access access) noexcept;

} // namespace tools::qrlprobe::memory
