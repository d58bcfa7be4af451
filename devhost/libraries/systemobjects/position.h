#pragma once

#include <cstddef>
#include <optional>
#include <windows.h>

#include <oleauto.h>

namespace devhost::systemobjects {

/// Where the element that callers count as `index`, from 1, stands; nothing outside the list.
inline std::optional<std::size_t> positionOf(LONG index, std::size_t size)
{
    const bool isInside = index >= 1 && static_cast<std::size_t>(index) <= size;
    return isInside ? std::optional(static_cast<std::size_t>(index - 1)) : std::nullopt;
}

/// Nothing for an index that is no VT_I4 either.
inline std::optional<std::size_t> positionOf(const VARIANT& index, std::size_t size)
{
    return V_VT(&index) == VT_I4 ? positionOf(V_I4(&index), size) : std::nullopt;
}

} // namespace devhost::systemobjects
