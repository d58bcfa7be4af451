#pragma once

#include "logreading/record.h"

#include <cstddef>
#include <map>
#include <utility>

namespace logreading {

/// Finds places where records are missing. A record that can't get the log within half a second is dropped without a
/// word; only the scopes of a detailed log show it, as a thread leaves what it did not enter. One thread.
class Gaps {
public:
    void take(const Record& record);

    std::size_t count() const { return m_count; }

private:
    using Thread = std::pair<std::uint16_t, std::uint16_t>;

    std::map<Thread, unsigned> m_depths; ///< scopes that are open, by process and thread
    std::size_t m_count = 0;
};

} // namespace logreading
