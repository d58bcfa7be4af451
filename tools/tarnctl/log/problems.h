#pragma once

#include "logreading/record.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace tarnctl::log {

/// Records of one kind: the same text but for its numbers.
struct Problem {
    logreading::Level level = logreading::Level::Error;
    std::string message; ///< of the first
    std::size_t count = 0;
    logreading::Moment first = 0;
    logreading::Moment last = 0;
};

/// Counts warnings and errors by their kind. Keeps a bounded number of kinds; what comes beyond them is counted as one.
class Problems {
public:
    void take(const logreading::Record& record);

    /// The most severe first, of equal ones the most frequent.
    std::vector<Problem> worst() const;

private:
    std::unordered_map<std::string, Problem> m_kinds;
};

} // namespace tarnctl::log
