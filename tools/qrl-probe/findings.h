#pragma once

#include "qrl-probe/check.h"

#include <array>
#include <string>
#include <vector>

namespace tools::qrlprobe {

/// What came of each check. One thread at a time.
class Findings {
public:
    /// `seen` says what was expected or better; a later one replaces an earlier one, but never a failure.
    void pass(Check check, const std::string& seen);
    /// The first failure of a check stays.
    void fail(Check check, const std::string& seen);
    void judge(Check check, bool passed, const std::string& seen);

    /// The check in one line without an end: outcome, name, what was expected, what was seen.
    std::string line(Check check) const;
    /// One line without an end: which checks failed; without one, which were never put to the test.
    std::string verdict() const;
    /// The checks whose line is another one than at the last call.
    std::vector<Check> takeChanges();

private:
    enum class Outcome { NotSeen, Passed, Failed };
    struct Finding {
        Outcome outcome = Outcome::NotSeen;
        std::string seen = "nothing yet";
        bool isChanged = false;
    };

    void put(Check check, Outcome outcome, const std::string& seen);
    std::string namesOf(Outcome outcome) const;

    std::array<Finding, checkCount> m_findings;
};

} // namespace tools::qrlprobe
