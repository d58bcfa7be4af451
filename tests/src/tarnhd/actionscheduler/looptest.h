#pragma once

#include "tarnhd/wallclock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace support {

inline constexpr std::chrono::seconds deadline{60};

/// A clock that a test sets.
struct FakeClock {
    std::atomic<vx::tarn::Ticks> now{1'000'000'000'000};

    vx::tarn::WallClock function()
    {
        return [this] { return now.load(); };
    }
    void advance(std::chrono::milliseconds by) { now += by.count() * vx::tarn::ticksPerMillisecond; }
};

/// What ran, in order; another thread can wait for the nth entry.
class Record {
public:
    void add(const std::string& entry)
    {
        const std::lock_guard lock(m_mutex);
        m_entries.push_back(entry);
        m_added.notify_all();
    }
    std::vector<std::string> waitFor(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_added.wait_for(lock, deadline, [&] { return m_entries.size() >= count; }));
        return m_entries;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_added;
    std::vector<std::string> m_entries;
};

} // namespace support
