#include "libraries/vx_flyer_api_32/flyers.h"

#include "logging/nodestructor.h"

namespace devhost::flyers {

Flyers& Flyers::instance()
{
    static vx::NoDestructor<Flyers> flyers;
    return *flyers;
}

Handle Flyers::create(nlohmann::json flyer)
{
    const std::lock_guard lock(m_mutex);
    m_flyers[++m_lastHandle] = std::move(flyer);
    return m_lastHandle;
}

void Flyers::change(Handle handle, const std::function<void(nlohmann::json& flyer)>& change)
{
    const std::lock_guard lock(m_mutex);
    change(m_flyers.at(handle));
}

nlohmann::json Flyers::get(Handle handle)
{
    const std::lock_guard lock(m_mutex);
    return m_flyers.at(handle);
}

void Flyers::close(Handle handle)
{
    const std::lock_guard lock(m_mutex);
    m_flyers.erase(handle);
}

} // namespace devhost::flyers
