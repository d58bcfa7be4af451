#pragma once

namespace vx::process {

/// A mask of the child's standard streams that are to be pipes to this process.
enum class Redirect : unsigned { None = 0, StandardInput = 1, StandardOutput = 2, StandardError = 4 };

constexpr Redirect operator|(Redirect left, Redirect right) noexcept
{
    return static_cast<Redirect>(static_cast<unsigned>(left) | static_cast<unsigned>(right));
}

/// Whether the mask holds the stream.
constexpr bool contains(Redirect mask, Redirect stream) noexcept
{
    return (static_cast<unsigned>(mask) & static_cast<unsigned>(stream)) != 0;
}

} // namespace vx::process
