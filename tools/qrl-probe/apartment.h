#pragma once

namespace tools::qrlprobe {

/// In which kind of COM apartment a thread stands.
enum class Apartment { None, MultiThreaded, SingleThreaded };

/// The calling thread's. Loads nothing and enters none.
Apartment currentApartment() noexcept;

} // namespace tools::qrlprobe
