#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace bench {

/// Does one repeat and gives its nanoseconds per operation.
using Measure = std::function<double()>;

/// Keeps the compiler from dropping the computation of a value.
template <typename T>
inline void keep(const T& value)
{
    asm volatile("" : : "m"(value) : "memory");
}

/// One repeat is `calls` calls of `operation`, timed as a whole. The loop is compiled around the operation,
/// so a call of a nanosecond can be measured.
template <typename Operation>
Measure perCall(std::size_t calls, Operation operation)
{
    return [calls, operation]() mutable {
        const auto start = std::chrono::steady_clock::now();
        for (std::size_t i = 0; i < calls; ++i) {
            operation();
            asm volatile("" : : : "memory");
        }
        const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - start;
        return elapsed.count() / static_cast<double>(calls);
    };
}

/// One repeat is one call of `body`, which does `operations` operations.
Measure perBatch(std::size_t operations, std::function<void()> body);

/// What a ratio has to reach. Ratios of times compare our time with the floor's, smaller is better;
/// ratios of rates compare our operations per second with the floor's, larger is better.
struct Reach {
    enum class Kind { Time, Rate };
    Kind kind;
    double ratio;

    static Reach timeUpTo(double ratio) { return {Kind::Time, ratio}; }
    static Reach rateFrom(double ratio) { return {Kind::Rate, ratio}; }
};

/// The table of one program, printed row by row to the standard output. One thread.
class Comparison {
public:
    /// Prints the head. `repeats` counts the pairs of runs of each row.
    explicit Comparison(std::string title, int repeats = 15);

    /// Runs both sides once unmeasured, then alternately `repeats` times, and prints
    /// "path | floor | ours | ratio | reach". Times are medians per operation; the ratio is the median
    /// of the pairs' ratios, so that a disturbance which hits both sides of a pair cancels out.
    void row(const std::string& path, const Measure& floor, const Measure& ours, Reach reach);
    /// The same with a number of pairs of its own, for rows whose repeats are long.
    void row(const std::string& path, const Measure& floor, const Measure& ours, Reach reach, int repeats);

    /// Prints a line under the table; `holds` false makes the program fail.
    void note(const std::string& text, bool holds = true);

    /// For main: 0 when every row reached its ratio and every note holds, otherwise 1.
    int exitCode() const { return m_failed ? 1 : 0; }

private:
    int m_repeats;
    bool m_failed = false;
};

} // namespace bench
