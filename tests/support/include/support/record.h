#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace support {

/// Generous: a wait that reaches it has failed.
inline constexpr std::chrono::seconds deadline{60};
/// For what must not come: a wait that does not reach it has failed.
inline constexpr std::chrono::milliseconds moment{100};

/// What ran, in order; another thread can wait for the nth entry.
class Record {
public:
    void add(const std::string& entry)
    {
        const std::lock_guard lock(m_mutex);
        m_entries.push_back(entry);
        m_added.notify_all();
    }
    std::size_t size() const
    {
        const std::lock_guard lock(m_mutex);
        return m_entries.size();
    }
    std::vector<std::string> waitFor(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_added.wait_for(lock, deadline, [&] { return m_entries.size() >= count; }));
        return m_entries;
    }

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_added;
    std::vector<std::string> m_entries;
};

} // namespace support
