#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>

namespace devhost::flyers {

/// Handles are numbers that are never used again; 0 is none.
using Handle = std::uint32_t;

/// The flyers that are being made in this process. Any thread.
class Flyers {
public:
    /// Never destroyed: at the end of the process other threads may have died at any place.
    static Flyers& instance();

    Handle create(nlohmann::json flyer);
    /// Both throw std::out_of_range for a flyer that isn't there.
    void change(Handle handle, const std::function<void(nlohmann::json& flyer)>& change);
    nlohmann::json get(Handle handle);
    void close(Handle handle);

private:
    std::mutex m_mutex;
    std::map<Handle, nlohmann::json> m_flyers; ///< guarded by m_mutex, as is m_lastHandle
    Handle m_lastHandle = 0;
};

} // namespace devhost::flyers
