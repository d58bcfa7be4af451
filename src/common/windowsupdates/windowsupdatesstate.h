#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>

namespace vx::tarn::common {

/// The four numbers of the policy for automatic updates.
struct WindowsUpdatesState {
    std::optional<std::int32_t> noAutoUpdate;
    std::optional<std::int32_t> auOptions;
    std::optional<std::int32_t> scheduledInstallDay;
    std::optional<std::int32_t> scheduledInstallTime;

    bool isComplete() const noexcept;
    /// All four with their names; -1 for one that is not set.
    friend std::ostream& operator<<(std::ostream& stream, const WindowsUpdatesState& state);
};

} // namespace vx::tarn::common
