#pragma once

#include <array>
#include <cstdint>
#include <windows.h>

namespace rig {

/// Sets the wall clock of this process for the object's life, under whatever reads it. One at a time, and only while
/// no other thread reads the clock: the system's functions are overwritten with a jump.
class ClockAhead {
public:
    /// Seconds since the Unix epoch; the clock goes on from there.
    explicit ClockAhead(std::int64_t now);
    ~ClockAhead();
    ClockAhead(const ClockAhead&) = delete;
    ClockAhead& operator=(const ClockAhead&) = delete;

private:
    struct Overwritten {
        const char* name;
        unsigned char* code = nullptr;
        std::array<unsigned char, 5> bytes{};
    };
    static void overwrite(unsigned char* code, const std::array<unsigned char, 5>& bytes);

    std::array<Overwritten, 2> m_functions{{{"GetSystemTimeAsFileTime"}, {"GetSystemTimePreciseAsFileTime"}}};
};

} // namespace rig
