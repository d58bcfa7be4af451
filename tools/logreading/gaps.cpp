#include "logreading/gaps.h"

namespace logreading {

void Gaps::take(const Record& record)
{
    // A new process may have been given the ids of an old one.
    if (record.message.starts_with("***  LOGGING STARTED"))
        std::erase_if(m_depths, [&](const auto& entry) { return entry.first.first == record.process; });
    if (record.scope == Scope::None)
        return;
    const bool entered = record.scope == Scope::Entered;
    const auto [place, isNew] = m_depths.try_emplace({record.process, record.thread}, 0u);
    const auto before = record.depth + (entered ? 0u : 1u);
    // Where a thread's first scopes stand the log may have begun within others.
    if (!isNew && place->second != before)
        ++m_count;
    place->second = record.depth + (entered ? 1u : 0u);
}

} // namespace logreading
